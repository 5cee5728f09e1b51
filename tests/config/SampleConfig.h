#pragma once

#include <QByteArray>

/// A settings file with two cards, in which no value is a default one.
inline const QByteArray kSampleConfig = R"(<?xml version="1.0" encoding="UTF-8"?>
<OvrynParameter>
    <GeneralSetting StartOnBoot="0" MinimizeOnStart="1" ApplyLastParamOnStart="0" Language="lang_en" RefreshTimeOfMonitor="5" PageEffects="advanced"/>
    <UpdateSetting CheckInterval="30" UpdateMode="2" UpdateStatus="3"/>
    <GpuSettings>
        <GPU GpuName="GeForce GTX 1070 Ti" SubSystemId="286094199">
            <MonitorModule SelectOption="21"/>
            <AdjustModule GpuFreClock="1900" FanSpeedLevel="70" Voltage="1050" MemoryFreClock="4100" Power="110" Temperature="88" LinkOfPowerWithTemperature="1" FanMode="2" EnableHighPerformance="1" Nodes="0,0|30,40|60,80|100,100|"/>
            <LedModule Interval="9" LedMode="4" CheckedColorButtonStatic="6" CheckedColorButtonDynamic="129" Color1="1" Color2="2" Color3="3" Color4="4" Color5="5" Color6="6" Color7="4294967295"/>
            <LcdModule AutoSwitch="0" SwitchTime="15" ModifierKey="18" NormalKey="65" EnableLcd="0"/>
        </GPU>
        <GPU GpuName="Quadro &quot;P&amp;4000&quot; &lt;2&gt;" SubSystemId="4294967295">
            <MonitorModule SelectOption="2"/>
            <AdjustModule GpuFreClock="1000" FanSpeedLevel="1" Voltage="2" MemoryFreClock="3" Power="4" Temperature="5" LinkOfPowerWithTemperature="0" FanMode="1" EnableHighPerformance="0" Nodes=""/>
            <LedModule Interval="3" LedMode="2" CheckedColorButtonStatic="2" CheckedColorButtonDynamic="4" Color1="11" Color2="12" Color3="13" Color4="14" Color5="15" Color6="16" Color7="17"/>
            <LcdModule AutoSwitch="1" SwitchTime="20" ModifierKey="16" NormalKey="66" EnableLcd="1"/>
        </GPU>
    </GpuSettings>
    <LastCloseDate>2021/03/04</LastCloseDate>
    <LastStartDate>2021/03/05</LastStartDate>
    <LastCheckDate>2021/02/28</LastCheckDate>
    <LastUpdateDate>2020/12/31</LastUpdateDate>
    <OtherSetting NotPromptHPS="1"/>
</OvrynParameter>
)";
