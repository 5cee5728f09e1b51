; The installer of build/windows/OvrynDeck2, for the user who starts it; made by installer.sh.
; Options of a silent run (/S): /DESKTOP adds the shortcut on the desktop, /NOAUTOSTART leaves out the start with
; Windows, /D=C:\folder (last, without quotes) names the folder. The uninstaller's /REMOVESETTINGS removes config.xml.

Unicode true
ManifestDPIAware true
SetCompressor /SOLID lzma
RequestExecutionLevel user ; all that it writes is the user's own

!include MUI2.nsh
!include FileFunc.nsh
!include LogicLib.nsh

!define NAME "OvrynDeck II"
!define PROGRAM "OvrynDeck2.exe"
!define GUARD "ovryn-fan-guard.exe"
!define RUN_KEY "Software\Microsoft\Windows\CurrentVersion\Run"
!define RUN_VALUE "_OvrynDeck2"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\OvrynDeck2"
!define END_EVENT "Local\OvrynDeck2_end" ; see src/platform/EndSignals_win.cpp
!define WAIT_MS 250
!define WAITS_MAX 480 ; the program may take its time to hand back the fans of cards that are slow: two minutes

Name "${NAME}"
OutFile "${OUTPUT}"
BrandingText "${NAME} ${VERSION}"
InstallDir "$LOCALAPPDATA\Programs\OvrynDeck2" ; writable, since settings and updates lie beside the program
InstallDirRegKey HKCU "${UNINSTALL_KEY}" "InstallLocation"

VIProductVersion "${VERSION}"
VIAddVersionKey /LANG=0 "ProductName" "${NAME}"
VIAddVersionKey /LANG=0 "ProductVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "FileDescription" "${NAME} Setup"
VIAddVersionKey /LANG=0 "FileVersion" "${VERSION}"
VIAddVersionKey /LANG=0 "LegalCopyright" "MIT licence"

!define MUI_ICON "${TREE}/resources/images/icon.ico"
!define MUI_UNICON "${TREE}/resources/images/icon.ico"
!define MUI_ABORTWARNING
!define MUI_COMPONENTSPAGE_SMALLDESC
!define MUI_FINISHPAGE_RUN "$INSTDIR\${PROGRAM}"
!define MUI_LANGDLL_REGISTRY_ROOT HKCU
!define MUI_LANGDLL_REGISTRY_KEY "${UNINSTALL_KEY}"
!define MUI_LANGDLL_REGISTRY_VALUENAME "InstallerLanguage"

!insertmacro MUI_PAGE_COMPONENTS
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE "English"
!insertmacro MUI_LANGUAGE "SimpChinese"
!insertmacro MUI_RESERVEFILE_LANGDLL

LangString desktopShortcut ${LANG_ENGLISH} "Shortcut on the desktop"
LangString desktopShortcut ${LANG_SIMPCHINESE} "桌面快捷方式"
LangString startWithWindows ${LANG_ENGLISH} "Start with Windows"
LangString startWithWindows ${LANG_SIMPCHINESE} "随 Windows 启动"
LangString stillRunning ${LANG_ENGLISH} "${NAME} is still running. Close it, then try again."
LangString stillRunning ${LANG_SIMPCHINESE} "${NAME} 仍在运行。请关闭后重试。"
LangString keepSettings ${LANG_ENGLISH} "Keep your settings (config.xml)?"
LangString keepSettings ${LANG_SIMPCHINESE} "保留您的设置 (config.xml) 吗？"

Var wasRunning

; Sets the error flag while the file is there and in use.
!macro checkFree FILE
    ClearErrors
    ${If} ${FileExists} "${FILE}"
        FileOpen $1 "${FILE}" a
        ${IfNot} ${Errors}
            FileClose $1
        ${EndIf}
    ${EndIf}
!macroend

; Has a running program save its settings, hand back its fans and end, and waits for that.
!macro endProgramFunction UN
Function ${UN}endProgram
    StrCpy $wasRunning 0
    again:
    StrCpy $R0 0
    ${Do}
        System::Call 'kernel32::OpenEventW(i 2, i 0, w "${END_EVENT}") p.r0'
        ${If} $0 P<> 0
            ${If} $R0 = 0
                StrCpy $wasRunning 1
                System::Call 'kernel32::SetEvent(p r0)'
            ${EndIf}
            System::Call 'kernel32::CloseHandle(p r0)'
        ${Else}
            !insertmacro checkFree "$INSTDIR\${PROGRAM}"
            ${IfNot} ${Errors}
                !insertmacro checkFree "$INSTDIR\${GUARD}"
                ${IfNot} ${Errors}
                    Return
                ${EndIf}
            ${EndIf}
        ${EndIf}
        Sleep ${WAIT_MS}
        IntOp $R0 $R0 + 1
    ${LoopUntil} $R0 >= ${WAITS_MAX}
    MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(stillRunning)" /SD IDCANCEL IDRETRY again
    SetErrorLevel 2
    Abort
FunctionEnd
!macroend
!insertmacro endProgramFunction ""
!insertmacro endProgramFunction "un."

Section "${NAME}" SectionProgram
    SectionIn RO
    Call endProgram
    ; The older version's own list says what of it is to go.
    ${If} ${FileExists} "$INSTDIR\Uninstall.exe"
        ExecWait '"$INSTDIR\Uninstall.exe" /S /UPGRADE _?=$INSTDIR'
    ${EndIf}

    SetOutPath "$INSTDIR"
    File /r "${FOLDER}/*"
    WriteUninstaller "$INSTDIR\Uninstall.exe"
    CreateShortcut "$SMPROGRAMS\${NAME}.lnk" "$INSTDIR\${PROGRAM}"

    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayName" "${NAME}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayVersion" "${VERSION}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "DisplayIcon" "$INSTDIR\${PROGRAM}"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "InstallLocation" "$INSTDIR"
    WriteRegStr HKCU "${UNINSTALL_KEY}" "UninstallString" '"$INSTDIR\Uninstall.exe"'
    WriteRegStr HKCU "${UNINSTALL_KEY}" "QuietUninstallString" '"$INSTDIR\Uninstall.exe" /S'
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoModify" 1
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "NoRepair" 1
    ${GetSize} "$INSTDIR" "/S=0K" $0 $1 $2
    WriteRegDWORD HKCU "${UNINSTALL_KEY}" "EstimatedSize" $0
SectionEnd

Section /o "$(desktopShortcut)" SectionDesktop
    CreateShortcut "$DESKTOP\${NAME}.lnk" "$INSTDIR\${PROGRAM}"
SectionEnd

Section "$(startWithWindows)" SectionAutoStart
SectionEnd

; The first settings: what was chosen here. Later the program's own settings page decides, and writes the Run value at
; each close.
Section -FirstSettings
    ${If} ${FileExists} "$INSTDIR\config.xml"
        Goto done
    ${EndIf}
    StrCpy $0 0
    ${If} ${SectionIsSelected} ${SectionAutoStart}
        StrCpy $0 1
        WriteRegStr HKCU "${RUN_KEY}" "${RUN_VALUE}" "$INSTDIR\${PROGRAM}"
    ${EndIf}
    StrCpy $1 "lang_en"
    ${If} $LANGUAGE = ${LANG_SIMPCHINESE}
        StrCpy $1 "lang_ch"
    ${EndIf}
    FileOpen $2 "$INSTDIR\config.xml" w
    FileWrite $2 '<?xml version="1.0" encoding="UTF-8"?>$\r$\n<OvrynParameter>$\r$\n'
    FileWrite $2 '    <GeneralSetting StartOnBoot="$0" MinimizeOnStart="0" ApplyLastParamOnStart="1" Language="$1"'
    FileWrite $2 ' RefreshTimeOfMonitor="1" PageEffects="normal"/>$\r$\n</OvrynParameter>$\r$\n'
    FileClose $2
    done:
SectionEnd

Section -StartAgain
    ${If} ${Silent}
    ${AndIf} $wasRunning = 1
        Exec '"$INSTDIR\${PROGRAM}"'
    ${EndIf}
SectionEnd

Function .onInit
    !insertmacro MUI_LANGDLL_DISPLAY
    ${GetParameters} $R0
    ClearErrors
    ${GetOptions} $R0 "/DESKTOP" $R1
    ${IfNot} ${Errors}
        !insertmacro SelectSection ${SectionDesktop}
    ${EndIf}
    ClearErrors
    ${GetOptions} $R0 "/NOAUTOSTART" $R1
    ${IfNot} ${Errors}
        !insertmacro UnselectSection ${SectionAutoStart}
    ${EndIf}
    ; The settings that are there already say it.
    ${If} ${FileExists} "$INSTDIR\config.xml"
        SectionSetText ${SectionAutoStart} ""
    ${EndIf}
FunctionEnd

Function un.onInit
    !insertmacro MUI_UNGETLANGUAGE
FunctionEnd

Section Uninstall
    Call un.endProgram
    !include "${FILE_LIST}" ; deletes what was installed, and nothing else
    Delete "$INSTDIR\Uninstall.exe"

    ${GetParameters} $R0
    ClearErrors
    ${GetOptions} $R0 "/UPGRADE" $R1
    ${If} ${Errors}
        ClearErrors
        ${GetOptions} $R0 "/REMOVESETTINGS" $R1
        ${If} ${Errors}
            MessageBox MB_YESNO|MB_ICONQUESTION "$(keepSettings)" /SD IDYES IDYES keep
        ${EndIf}
        Delete "$INSTDIR\config.xml"
        keep:
        RMDir /r "$INSTDIR\temp" ; the program's own folder for updates
        Delete "$SMPROGRAMS\${NAME}.lnk"
        Delete "$DESKTOP\${NAME}.lnk"
        DeleteRegValue HKCU "${RUN_KEY}" "${RUN_VALUE}"
        DeleteRegValue HKLM "${RUN_KEY}" "${RUN_VALUE}" ; stays when an administrator set it and this user is none
        DeleteRegKey HKCU "${UNINSTALL_KEY}"
        SetOutPath "$TEMP"
        RMDir "$INSTDIR"
    ${EndIf}
SectionEnd
