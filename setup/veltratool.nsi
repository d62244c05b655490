; The installer of the tool, for all users of a computer, in the language of its Windows.
; makensis -DVERSION=1.0.0.0 -DWIDTH=64 (or 32) -DFILES=folder -DOUTPUT=file; the folder holds what ForEachFile names.
; Exit codes: 0 done, 1 cancelled, 2 a file could not be written, 3 the tool does not end, 4 done, but the tool could not be
; started again.
Unicode true
!if ${WIDTH} == 64
  Target amd64-unicode
  !define STARTUPINFO_SIZE 104
!else
  Target x86-unicode
  !define STARTUPINFO_SIZE 68
!endif
!include MUI2.nsh
!include LogicLib.nsh
!include x64.nsh

!define PRODUCT "Veltra device tool"
!define UNINSTALL_KEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\VeltraDeviceTool"
!define RUN_KEY "Software\Microsoft\Windows\CurrentVersion\Run"
!define TOOL_KEY "SOFTWARE\Veltra\Sarvik5"
!define WINDOW "VeltraInternal"  ; class and title
!define PATIENCE 15000  ; ms for the tool to end, also in the middle of its start

Name "${PRODUCT}"
OutFile "${OUTPUT}"
RequestExecutionLevel admin
ManifestSupportedOS all
AllowSkipFiles off  ; or a silent installation would go on without a file
SetCompressor /SOLID lzma
SetDateSave off  ; the same bytes from the same files
BrandingText "${PRODUCT} ${VERSION}"

!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!define MUI_UNCONFIRMPAGE_TEXT_LOCATION "$(REMOVE_FROM)"  ; the usual text is cut in English
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE Dutch

VIProductVersion ${VERSION}
VIAddVersionKey /LANG=${LANG_ENGLISH} CompanyName "Veltra"
VIAddVersionKey /LANG=${LANG_ENGLISH} LegalCopyright ""
VIAddVersionKey /LANG=${LANG_ENGLISH} FileDescription "Installer of the ${PRODUCT}"
VIAddVersionKey /LANG=${LANG_ENGLISH} FileVersion "${VERSION}"
VIAddVersionKey /LANG=${LANG_ENGLISH} ProductName "${PRODUCT}"
VIAddVersionKey /LANG=${LANG_ENGLISH} ProductVersion "${VERSION}"

LangString TOOL_STAYS ${LANG_ENGLISH} "The device tool does not end: a firmware update runs, or somebody else who is logged on has it open. Nothing has been changed."
LangString TOOL_STAYS ${LANG_DUTCH} "Het programma van het toestel sluit niet af: er loopt een firmware-update, of iemand anders die aangemeld is heeft het open. Er is niets gewijzigd."
LangString NOT_STARTED ${LANG_ENGLISH} "The device tool could not be started. Until it runs, the switches do not work: start it from the Start menu."
LangString NOT_STARTED ${LANG_DUTCH} "Het programma van het toestel kon niet gestart worden. Zolang het niet loopt, werken de schakelaars niet: start het vanuit het menu Start."
LangString REMOVE_FROM ${LANG_ENGLISH} "Remove from:"
LangString REMOVE_FROM ${LANG_DUTCH} "Verwijderen uit:"
LangString REMOVE_SETTINGS ${LANG_ENGLISH} "Remove the settings, the profile of the side buttons and the log, too?"
LangString REMOVE_SETTINGS ${LANG_DUTCH} "Ook de instellingen, het profiel van de zijknoppen en het logboek verwijderen?"

Var Token    ; the rights of whom the tool is started for; 0: it is not
Var Process  ; of the window that was asked last

!macro ForEachFile DO
  !insertmacro ${DO} "veltratool.exe"
  !insertmacro ${DO} "toolprobe.exe"
  !insertmacro ${DO} "hexinfo.exe"
  !insertmacro ${DO} "macm_English.dll"
  !insertmacro ${DO} "macm_Nederlands.dll"
  !insertmacro ${DO} "sarvikkey_English.ini"
  !insertmacro ${DO} "sarvikkey_Nederlands.ini"
  !insertmacro ${DO} "docs\deployment.html"
  !insertmacro ${DO} "docs\programs.html"
  !insertmacro ${DO} "docs\macros_and_tables.html"
  !insertmacro ${DO} "docs\window_interface.html"
  !insertmacro ${DO} "docs\controller_protocol.html"
  !insertmacro ${DO} "docs\windows_checklist.html"
  !insertmacro ${DO} "docs\changes.html"
!macroend
!macro Put NAME
  File "/oname=${NAME}" "${FILES}\${NAME}"
!macroend
!macro Remove NAME
  Delete "$INSTDIR\${NAME}"
!macroend

; What both the installer and the uninstaller do: functions of the latter have names of their own.
!macro Both UN
; One place in the registry for both widths, so that one replaces the other.
Function ${UN}Prepare
  SetShellVarContext all
  ${If} ${RunningX64}
    SetRegView 64
  ${EndIf}
FunctionEnd

; The process and the rights behind the window in $0. A token is opened even when another user's password elevated us.
Function ${UN}LookBehindWindow
  System::Call 'ntdll::RtlAdjustPrivilege(i 20, i 1, i 0, *i)'  ; SE_DEBUG_PRIVILEGE
  System::Call 'user32::GetWindowThreadProcessId(p r0, *i .r1)'
  System::Call 'kernel32::OpenProcess(i 0x100400, i 0, i r1) p .r2'  ; SYNCHRONIZE, PROCESS_QUERY_INFORMATION
  System::Call 'advapi32::OpenProcessToken(p r2, i 0xB, *p .r3)'   ; to be asked, duplicated, given to a process
  StrCpy $4 0
  System::Call 'advapi32::DuplicateTokenEx(p r3, i 0x2000000, p 0, i 2, i 1, *p .r4)'  ; all there is, a primary token
  StrCpy $Process $2
  StrCpy $Token $4
FunctionEnd

Function ${UN}StartTool
  ${If} $Token P= 0
    Return
  ${EndIf}
  StrCpy $0 '"$INSTDIR\veltratool.exe" -s'
  System::Call '*(&i${STARTUPINFO_SIZE}) p .r1'
  System::Call '*$1(i ${STARTUPINFO_SIZE})'
  System::Call '*(p, p, i, i) p .r2'
  System::Call 'advapi32::CreateProcessWithTokenW(p $Token, i 0, p 0, w r0, i 0, p 0, w "$INSTDIR", p r1, p r2) i .r3'
  ${If} $3 = 0
    SetErrorLevel 4
    MessageBox MB_OK|MB_ICONEXCLAMATION "$(NOT_STARTED)" /SD IDOK
  ${EndIf}
  StrCpy $Token 0
FunctionEnd

; Asks politely: the tool refuses while a firmware update runs.
Function ${UN}EndTool
again:
  StrCpy $5 0
look:
  FindWindow $0 "${WINDOW}" "${WINDOW}"
  ${If} $0 P<> 0
    Call ${UN}LookBehindWindow
    System::Call 'user32::PostMessageW(p r0, i 0x10, p 0, p 0)'  ; WM_CLOSE
    System::Call 'kernel32::WaitForSingleObject(p $Process, i ${PATIENCE}) i .r1'
    ${If} $1 <> 0
      StrCpy $Token 0  ; it still runs
      Goto stays
    ${EndIf}
  ${EndIf}
  ; At its very start it has no window yet, and in the session of somebody else none for us.
  ${IfNot} ${FileExists} "$INSTDIR\veltratool.exe"
    Return
  ${EndIf}
  ClearErrors
  FileOpen $1 "$INSTDIR\veltratool.exe" a
  ${IfNot} ${Errors}
    FileClose $1
    Return
  ${EndIf}
  IntOp $5 $5 + 1
  ${If} $5 < 10
    Sleep 500
    Goto look
  ${EndIf}
stays:
  MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(TOOL_STAYS)" /SD IDCANCEL IDRETRY again
  Call ${UN}StartTool
  SetErrorLevel 3
  Quit
FunctionEnd
!macroend
!insertmacro Both ""
!insertmacro Both "un."

Function .onInit
  Call Prepare
  StrCpy $Token 0
  ${If} $INSTDIR == ""  ; no /D=
    ReadRegStr $INSTDIR HKLM "${UNINSTALL_KEY}" InstallLocation
  ${EndIf}
  ${If} $INSTDIR == ""
    StrCpy $INSTDIR "$PROGRAMFILES${WIDTH}\Veltra"
  ${EndIf}
FunctionEnd

Function .onInstFailed
  Call StartTool
FunctionEnd

Function un.onInit
  Call un.Prepare
  StrCpy $Token 0
FunctionEnd

; Two settings of Windows: while one is 1, the tool asks for elevation at each log-on to turn it off.
!macro TurnOff KEY VALUE
  ReadRegDWORD $0 HKLM "${KEY}" ${VALUE}
  ${If} $0 = 1
    WriteRegDWORD HKLM "${KEY}" ${VALUE} 0
    WriteRegDWORD HKLM "${UNINSTALL_KEY}" Was1_${VALUE} 1
  ${EndIf}
!macroend
!macro TurnOnAgain KEY VALUE
  ReadRegDWORD $0 HKLM "${UNINSTALL_KEY}" Was1_${VALUE}
  ${If} $0 = 1
    WriteRegDWORD HKLM "${KEY}" ${VALUE} 1
  ${EndIf}
!macroend
!macro ForEachSetting DO
  !insertmacro ${DO} "SYSTEM\CurrentControlSet\Control\Session Manager\Power" HiberbootEnabled
  !insertmacro ${DO} "SYSTEM\CurrentControlSet\Enum\PCI\VEN_8086&DEV_9C3A&SUBSYS_72708086&REV_04\3&11583659&0&B0\Device Parameters\WDF" IdleInWorkingState
!macroend

; Nobody is without switches for longer than the files take: the rest comes before or after.
Section
  Call EndTool
  SetOutPath "$INSTDIR"
  CreateDirectory "$INSTDIR\docs"
  !insertmacro ForEachSetting TurnOff
  !insertmacro ForEachFile Put
  ${If} $Token P= 0
  ${AndIfNot} ${Silent}
    System::Call 'user32::GetShellWindow() p .r0'
    Call LookBehindWindow
  ${EndIf}
  Call StartTool

  WriteUninstaller "$INSTDIR\uninstall.exe"
  CreateShortcut "$SMPROGRAMS\${PRODUCT}.lnk" "$INSTDIR\veltratool.exe" "-s"
  WriteRegStr HKLM "${RUN_KEY}" VeltraDeviceTool '"$INSTDIR\veltratool.exe" -s'
  WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayName "${PRODUCT}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayVersion "${VERSION}"
  WriteRegStr HKLM "${UNINSTALL_KEY}" DisplayIcon "$INSTDIR\veltratool.exe"
  WriteRegStr HKLM "${UNINSTALL_KEY}" Publisher "Veltra"
  WriteRegStr HKLM "${UNINSTALL_KEY}" InstallLocation "$INSTDIR"
  WriteRegStr HKLM "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr HKLM "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoModify 1
  WriteRegDWORD HKLM "${UNINSTALL_KEY}" NoRepair 1
SectionEnd

; The settings of every user whose registry is loaded, and of the machine where a tool of this width reads it.
Function un.RemoveSettings
  RMDir /r "$DOCUMENTS\Sarvik5"
  StrCpy $0 0
  ${Do}
    EnumRegKey $1 HKU "" $0
    DeleteRegKey HKU "$1\${TOOL_KEY}"
    DeleteRegKey /ifempty HKU "$1\SOFTWARE\Veltra"
    IntOp $0 $0 + 1
  ${LoopUntil} $1 == ""
  SetRegView ${WIDTH}
  DeleteRegKey HKLM "${TOOL_KEY}"
  DeleteRegKey /ifempty HKLM "SOFTWARE\Veltra"
FunctionEnd

; What others put into the folder stays, and the folder with it.
Section un.
  Call un.EndTool
  !insertmacro ForEachFile Remove
  Delete "$INSTDIR\uninstall.exe"
  RMDir "$INSTDIR\docs"
  RMDir "$INSTDIR"
  Delete "$SMPROGRAMS\${PRODUCT}.lnk"
  !insertmacro ForEachSetting TurnOnAgain
  DeleteRegValue HKLM "${RUN_KEY}" VeltraDeviceTool
  DeleteRegKey HKLM "${UNINSTALL_KEY}"
  MessageBox MB_YESNO|MB_ICONQUESTION|MB_DEFBUTTON2 "$(REMOVE_SETTINGS)" /SD IDNO IDNO keep
  Call un.RemoveSettings
keep:
SectionEnd
