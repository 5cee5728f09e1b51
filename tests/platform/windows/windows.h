#pragma once

/// \file
/// The few things that the entry of the other platform asks of its system, so that it can be compiled and tried here.
/// `TestProcessEntry.cpp` defines what they do.

#define WINAPI
#define CP_ACP 0

using HINSTANCE = void *;
using LPSTR = char *;

const wchar_t *GetCommandLineW();
wchar_t **CommandLineToArgvW(const wchar_t *commandLine, int *count);
void *LocalFree(void *memory);
int WideCharToMultiByte(unsigned int codePage, unsigned long flags, const wchar_t *text, int length, char *out,
                        int outSize, const char *defaultChar, int *usedDefaultChar);

int WINAPI WinMain(HINSTANCE instance, HINSTANCE before, LPSTR commandLine, int show);
