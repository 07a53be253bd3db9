// The operating-system services the toolkit calls by their Windows names:
// the registry, windows and their messages, timers, message boxes, the
// clipboard, special folders, running programs, downloads and the C
// runtime's number readers. This host implements them on Linux (see
// host/system); what each one does differently is noted beside it.
#pragma once

#include <cstddef>
#include <cstdint>

typedef int32_t BOOL;
typedef uint8_t BYTE;
typedef uint32_t DWORD;
typedef uint32_t UINT;
typedef int32_t LONG;
typedef LONG LSTATUS;
typedef uintptr_t UINT_PTR;
typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;
typedef char16_t WCHAR;
typedef WCHAR* LPWSTR;
typedef const WCHAR* LPCWSTR;
typedef DWORD* LPDWORD;
typedef BYTE* LPBYTE;
typedef void* HANDLE;
typedef void* HGLOBAL;
typedef void* HINSTANCE;
typedef HINSTANCE HMODULE;

struct HWND__;
typedef HWND__* HWND;
struct HKEY__;
typedef HKEY__* HKEY;
typedef HKEY* PHKEY;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif
#ifndef MAX_PATH
#define MAX_PATH 260
#endif

struct POINT {
  LONG x, y;
};

struct MSG {
  HWND hwnd;
  UINT message;
  WPARAM wParam;
  LPARAM lParam;
  DWORD time;
  POINT pt;
};

// ------------------------------------------------------------ error codes

enum : LONG {
  ERROR_SUCCESS = 0,
  ERROR_FILE_NOT_FOUND = 2,
  ERROR_ACCESS_DENIED = 5,
  ERROR_INVALID_HANDLE = 6,
  ERROR_NOT_ENOUGH_MEMORY = 8,
  ERROR_INVALID_PARAMETER = 87,
  ERROR_MORE_DATA = 234,
  ERROR_NO_MORE_ITEMS = 259,
  ERROR_KEY_DELETED = 1018,
  ERROR_CAN_NOT_COMPLETE = 1003,
  ERROR_WRITE_FAULT = 29,
  ERROR_PATH_NOT_FOUND = 3,
  ERROR_NO_MORE_FILES = 18,
  ERROR_FILE_EXISTS = 80,
  ERROR_ALREADY_EXISTS = 183,
  ERROR_DIR_NOT_EMPTY = 145,
  ERROR_INSUFFICIENT_BUFFER = 122,
};

// The thread's last error, as GetLastError gives it after a failed call.
DWORD GetLastError();
void SetLastError(DWORD code);

// --------------------------------------------------------------- registry
//
// A hierarchical store of keys under the five roots, names compared without
// regard to case and kept as first written. Values are text (REG_SZ,
// REG_EXPAND_SZ, sizes in bytes including the ending zero) or 32-bit
// numbers (REG_DWORD); other types are stored as bytes. The store is kept
// in a file under $XDG_CONFIG_HOME/zepk/ (else ~/.config/zepk/), read at
// the first call and written, whole and atomically, after every change.

#define HKEY_CLASSES_ROOT (reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x80000000u)))
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x80000001u)))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x80000002u)))
#define HKEY_USERS (reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x80000003u)))
#define HKEY_CURRENT_CONFIG (reinterpret_cast<HKEY>(static_cast<uintptr_t>(0x80000005u)))

enum : DWORD {
  REG_NONE = 0,
  REG_SZ = 1,
  REG_EXPAND_SZ = 2,
  REG_BINARY = 3,
  REG_DWORD = 4,
  REG_MULTI_SZ = 7,
  REG_QWORD = 11,
};

enum : DWORD {
  KEY_QUERY_VALUE = 0x0001,
  KEY_SET_VALUE = 0x0002,
  KEY_CREATE_SUB_KEY = 0x0004,
  KEY_ENUMERATE_SUB_KEYS = 0x0008,
  KEY_READ = 0x20019,
  KEY_WRITE = 0x20006,
  KEY_ALL_ACCESS = 0xF003F,
  REG_OPTION_NON_VOLATILE = 0,
  REG_CREATED_NEW_KEY = 1,
  REG_OPENED_EXISTING_KEY = 2,
};

LSTATUS RegCreateKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD Reserved, LPWSTR lpClass, DWORD dwOptions,
                        DWORD samDesired, void* lpSecurityAttributes, PHKEY phkResult, LPDWORD lpdwDisposition);
LSTATUS RegOpenKeyExW(HKEY hKey, LPCWSTR lpSubKey, DWORD ulOptions, DWORD samDesired, PHKEY phkResult);
LSTATUS RegCloseKey(HKEY hKey);
LSTATUS RegSetValueExW(HKEY hKey, LPCWSTR lpValueName, DWORD Reserved, DWORD dwType, const BYTE* lpData,
                       DWORD cbData);
// With lpData null, gives the type and the size needed; a buffer too small
// gives ERROR_MORE_DATA and the size needed.
LSTATUS RegQueryValueExW(HKEY hKey, LPCWSTR lpValueName, LPDWORD lpReserved, LPDWORD lpType, LPBYTE lpData,
                         LPDWORD lpcbData);
LSTATUS RegDeleteValueW(HKEY hKey, LPCWSTR lpValueName);
// Deletes a key that has no subkeys (ERROR_ACCESS_DENIED otherwise).
LSTATUS RegDeleteKeyW(HKEY hKey, LPCWSTR lpSubKey);
// Sizes are in characters; names come in the order they were made.
LSTATUS RegEnumKeyExW(HKEY hKey, DWORD dwIndex, LPWSTR lpName, LPDWORD lpcchName, LPDWORD lpReserved,
                      LPWSTR lpClass, LPDWORD lpcchClass, void* lpftLastWriteTime);
LSTATUS RegEnumValueW(HKEY hKey, DWORD dwIndex, LPWSTR lpValueName, LPDWORD lpcchValueName, LPDWORD lpReserved,
                      LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData);
LSTATUS RegQueryInfoKeyW(HKEY hKey, LPWSTR lpClass, LPDWORD lpcchClass, LPDWORD lpReserved, LPDWORD lpcSubKeys,
                         LPDWORD lpcbMaxSubKeyLen, LPDWORD lpcbMaxClassLen, LPDWORD lpcValues,
                         LPDWORD lpcbMaxValueNameLen, LPDWORD lpcbMaxValueLen, LPDWORD lpcbSecurityDescriptor,
                         void* lpftLastWriteTime);

// ------------------------------------------------------ windows, messages
//
// Windows are records: a class name, a title, visibility and a parent. The
// host's main window and each document's window exist from the start; a
// program may look them up, show or hide them and set their titles.
// Messages go to the watchers the editor registers (acedRegisterWatchWinMsg)
// when the command loop is idle.

enum : UINT {
  WM_NULL = 0x0000,
  WM_SETTEXT = 0x000C,
  WM_CLOSE = 0x0010,
  WM_KEYDOWN = 0x0100,
  WM_CHAR = 0x0102,
  WM_COMMAND = 0x0111,
  WM_TIMER = 0x0113,
  WM_MOUSEMOVE = 0x0200,
  WM_LBUTTONDOWN = 0x0201,
  WM_LBUTTONUP = 0x0202,
  WM_USER = 0x0400,
};

enum : int {
  SW_HIDE = 0,
  SW_SHOWNORMAL = 1,
  SW_SHOWMINIMIZED = 2,
  SW_SHOWMAXIMIZED = 3,
  SW_SHOW = 5,
  SW_MINIMIZE = 6,
  SW_RESTORE = 9,
};

HWND FindWindowW(LPCWSTR lpClassName, LPCWSTR lpWindowName);
// Whether the window was visible before.
BOOL ShowWindow(HWND hWnd, int nCmdShow);
BOOL IsWindow(HWND hWnd);
BOOL IsWindowVisible(HWND hWnd);
BOOL SetWindowTextW(HWND hWnd, LPCWSTR lpString);
// Copies at most nMaxCount-1 characters and a zero; gives the count copied.
int GetWindowTextW(HWND hWnd, LPWSTR lpString, int nMaxCount);
int GetWindowTextLengthW(HWND hWnd);
// Queues a message for the watchers; false for a window that is no more.
BOOL PostMessageW(HWND hWnd, UINT Msg, WPARAM wParam, LPARAM lParam);

typedef void (*TIMERPROC)(HWND, UINT, UINT_PTR, DWORD);
// A timer of a window fires every uElapse milliseconds (10 at least) while
// the command loop is idle: its procedure is called, or without one a
// WM_TIMER message goes to the watchers. Setting the same window and event
// again replaces the interval. With no window the result is a new event id.
// Gives the event id, 0 on failure.
UINT_PTR SetTimer(HWND hWnd, UINT_PTR nIDEvent, UINT uElapse, TIMERPROC lpTimerFunc);
BOOL KillTimer(HWND hWnd, UINT_PTR uIDEvent);
// Milliseconds of the host's clock (the virtual clock when one is in use).
DWORD GetTickCount();

// ---------------------------------------------------------- message boxes
//
// A box is printed on the command line: its title and its text. A box
// that asks a question takes its answer from the pending input (Yes, No,
// OK, Cancel, Retry, Abort, Ignore or their first letters); with no input
// left it gives the default button's answer.

enum : UINT {
  MB_OK = 0x0,
  MB_OKCANCEL = 0x1,
  MB_ABORTRETRYIGNORE = 0x2,
  MB_YESNOCANCEL = 0x3,
  MB_YESNO = 0x4,
  MB_RETRYCANCEL = 0x5,
  MB_ICONERROR = 0x10,
  MB_ICONQUESTION = 0x20,
  MB_ICONWARNING = 0x30,
  MB_ICONINFORMATION = 0x40,
  MB_DEFBUTTON2 = 0x100,
  MB_DEFBUTTON3 = 0x200,
};

enum : int {
  IDOK = 1,
  IDCANCEL = 2,
  IDABORT = 3,
  IDRETRY = 4,
  IDIGNORE = 5,
  IDYES = 6,
  IDNO = 7,
};

int MessageBoxW(HWND hWnd, LPCWSTR lpText, LPCWSTR lpCaption, UINT uType);
// The frame's box: the application's name as its title.
int AfxMessageBox(LPCWSTR lpszText, UINT nType = MB_OK, UINT nIDHelp = 0);

// -------------------------------------------------------------- clipboard
//
// Text only. With DISPLAY set and xclip or xsel installed, the X11
// clipboard; otherwise a file under $XDG_RUNTIME_DIR (else /tmp) shared by
// the user's sessions. Memory for SetClipboardData comes from GlobalAlloc;
// the clipboard owns it from then on.

enum : UINT { CF_TEXT = 1, CF_UNICODETEXT = 13 };
enum : UINT { GMEM_FIXED = 0, GMEM_MOVEABLE = 2, GMEM_ZEROINIT = 0x40, GHND = 0x42 };

BOOL OpenClipboard(HWND hWndNewOwner);
BOOL CloseClipboard();
BOOL EmptyClipboard();
BOOL IsClipboardFormatAvailable(UINT format);
// CF_UNICODETEXT: zero-ended UTF-16; CF_TEXT: zero-ended bytes in the
// system code page. The handle stays the clipboard's.
HANDLE GetClipboardData(UINT uFormat);
HANDLE SetClipboardData(UINT uFormat, HANDLE hMem);
HGLOBAL GlobalAlloc(UINT uFlags, size_t dwBytes);
void* GlobalLock(HGLOBAL hMem);
BOOL GlobalUnlock(HGLOBAL hMem);
HGLOBAL GlobalFree(HGLOBAL hMem);
size_t GlobalSize(HGLOBAL hMem);

// --------------------------------------------------------- special folders
//
// CSIDL numbers map to the XDG folders: desktop $XDG_DESKTOP_DIR (else
// ~/Desktop), documents $XDG_DOCUMENTS_DIR (else ~/Documents), application
// data $XDG_CONFIG_HOME, local application data $XDG_DATA_HOME, fonts
// ~/.local/share/fonts, templates, pictures, music and videos their XDG
// folders, programs ~/.local/share/applications, the profile $HOME, system
// folders /usr/share and /usr/bin. The XDG values come from the
// environment, else from user-dirs.dirs.

enum : int {
  CSIDL_DESKTOP = 0x0000,
  CSIDL_PROGRAMS = 0x0002,
  CSIDL_PERSONAL = 0x0005,
  CSIDL_MYDOCUMENTS = 0x0005,
  CSIDL_FAVORITES = 0x0006,
  CSIDL_STARTUP = 0x0007,
  CSIDL_RECENT = 0x0008,
  CSIDL_STARTMENU = 0x000b,
  CSIDL_MYMUSIC = 0x000d,
  CSIDL_MYVIDEO = 0x000e,
  CSIDL_DESKTOPDIRECTORY = 0x0010,
  CSIDL_FONTS = 0x0014,
  CSIDL_TEMPLATES = 0x0015,
  CSIDL_COMMON_DESKTOPDIRECTORY = 0x0019,
  CSIDL_APPDATA = 0x001a,
  CSIDL_LOCAL_APPDATA = 0x001c,
  CSIDL_COMMON_APPDATA = 0x0023,
  CSIDL_WINDOWS = 0x0024,
  CSIDL_SYSTEM = 0x0025,
  CSIDL_PROGRAM_FILES = 0x0026,
  CSIDL_MYPICTURES = 0x0027,
  CSIDL_PROFILE = 0x0028,
  CSIDL_COMMON_DOCUMENTS = 0x002e,
  CSIDL_INTERNET_CACHE = 0x0020,
  CSIDL_FLAG_CREATE = 0x8000,
};

// lpszPath takes MAX_PATH characters. With fCreate (or CSIDL_FLAG_CREATE)
// a missing folder is made. False for an unknown number.
BOOL SHGetSpecialFolderPathW(HWND hwnd, LPWSTR lpszPath, int csidl, BOOL fCreate);
// The temporary folder with a "/" at its end ($TMPDIR, else /tmp/).
DWORD GetTempPathW(DWORD nBufferLength, LPWSTR lpBuffer);

// ------------------------------------------------------------- programs

// The file of the module (null: the host's program). Gives the length
// copied, 0 on failure; a short buffer is filled and cut.
DWORD GetModuleFileNameW(HMODULE hModule, LPWSTR lpFilename, DWORD nSize);

// Runs a command line through /bin/sh without waiting. Above 31 on success
// (33), else ERROR_FILE_NOT_FOUND.
UINT WinExec(const char* lpCmdLine, UINT uCmdShow);
// "open" (or null) of a file, folder or URL goes to xdg-open; a program
// runs with its parameters. Gives a value above 32 on success, else
// SE_ERR_FNF (2) when the file is not there or 31 when nothing opens it.
HINSTANCE ShellExecuteW(HWND hwnd, LPCWSTR lpOperation, LPCWSTR lpFile, LPCWSTR lpParameters,
                        LPCWSTR lpDirectory, int nShowCmd);

// ---------------------------------------------------------------- internet

// Copies the resource at the URL (file://, http://, https://) to the file,
// written under a temporary name and renamed into place, so that a failed
// transfer leaves what was there. S_OK (0) or E_FAIL.
enum : LONG { S_OK = 0, E_FAIL = static_cast<LONG>(0x80004005u), INET_E_DOWNLOAD_FAILURE = static_cast<LONG>(0x800C0008u) };
LONG URLDownloadToFileW(void* pCaller, LPCWSTR szURL, LPCWSTR szFileName, DWORD dwReserved, void* lpfnCB);

// The internet reads of the system's library: a session, a URL opened in
// it, its bytes read in pieces, the handles closed. Opening the URL fetches
// the whole resource (file://, http://, https://); it fails only when no
// answer came: an HTTP error page is read like any other, with its status
// from HttpQueryInfoW(HTTP_QUERY_STATUS_CODE).
typedef void* HINTERNET;
enum : DWORD {
  INTERNET_OPEN_TYPE_PRECONFIG = 0,
  INTERNET_OPEN_TYPE_DIRECT = 1,
  INTERNET_FLAG_NO_CACHE_WRITE = 0x04000000,
  INTERNET_FLAG_RELOAD = 0x80000000,
  HTTP_QUERY_STATUS_CODE = 19,
  HTTP_QUERY_FLAG_NUMBER = 0x20000000,
};
HINTERNET InternetOpenW(LPCWSTR lpszAgent, DWORD dwAccessType, LPCWSTR lpszProxy, LPCWSTR lpszProxyBypass,
                        DWORD dwFlags);
HINTERNET InternetOpenUrlW(HINTERNET hInternet, LPCWSTR lpszUrl, LPCWSTR lpszHeaders, DWORD dwHeadersLength,
                           DWORD dwFlags, UINT_PTR dwContext);
// *read is 0 at the end.
BOOL InternetReadFile(HINTERNET hFile, void* lpBuffer, DWORD dwNumberOfBytesToRead, LPDWORD lpdwNumberOfBytesRead);
BOOL InternetCloseHandle(HINTERNET hInternet);
BOOL HttpQueryInfoW(HINTERNET hRequest, DWORD dwInfoLevel, void* lpBuffer, LPDWORD lpdwBufferLength, LPDWORD lpdwIndex);

// ------------------------------------------------------- C runtime numbers
//
// As the Windows C runtime reads them: leading white space, a sign, then
// digits; reading stops at the first character that does not fit and what
// was read counts (nothing read gives 0). _wtof takes a decimal point,
// digits and an exponent (e, E, d or D); INF and NAN are no numbers to it
// (0); out of range gives HUGE_VAL or 0. _wtoi and _wtol clamp to
// INT_MIN..INT_MAX on overflow, _wtoi64 to the 64-bit range.
double _wtof(const WCHAR* str);
// The same rules for 8-bit text (the C library's atof and atoi read hex
// numbers, INF and NAN, which these do not).
double winAtof(const char* str);
int winAtoi(const char* str);
int _wtoi(const WCHAR* str);
LONG _wtol(const WCHAR* str);
int64_t _wtoi64(const WCHAR* str);

// ------------------------------------------------------------- code pages
//
// Conversions between the system's 8-bit code page (CP_ACP: 936 unless the
// host is set otherwise), UTF-8 (CP_UTF8) or any code page by number, and
// wide text. A length of -1 means "up to and including the terminating
// zero"; an output size of 0 asks for the size needed. Characters that
// cannot be converted become '?' one for one. The flags are ignored.
enum : UINT { CP_ACP = 0, CP_OEMCP = 1, CP_UTF8 = 65001 };
UINT GetACP();
int MultiByteToWideChar(UINT CodePage, DWORD dwFlags, const char* lpMultiByteStr, int cbMultiByte, LPWSTR lpWideCharStr,
                        int cchWideChar);
int WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr, int cchWideChar, char* lpMultiByteStr,
                        int cbMultiByte, const char* lpDefaultChar, BOOL* lpUsedDefaultChar);

// --------------------------------------------------- C runtime random numbers
//
// rand and srand as the Windows C runtime computes them, whatever this
// system's C library does: state = state * 214013 + 2531011, value =
// (state >> 16) & 0x7FFF; one process-wide state that starts as if seeded
// with 1.
inline constexpr int WIN_RAND_MAX = 0x7FFF;
int winRand();
void winSrand(unsigned seed);

// ------------------------------------------------------------------ files
//
// Files and folders by the host's path rules (drive letters mapped to
// folders, "\\" and "/" both separators). Names are matched against
// patterns as Windows matches them: without regard to case, "*" and "?"
// wildcards, and "*.*" matching every name, dotted or not. A copy is
// written to a temporary name and renamed into place; a move across file
// systems copies and then deletes.
enum : DWORD {
  FILE_ATTRIBUTE_READONLY = 0x1,
  FILE_ATTRIBUTE_HIDDEN = 0x2,
  FILE_ATTRIBUTE_DIRECTORY = 0x10,
  FILE_ATTRIBUTE_NORMAL = 0x80,
  INVALID_FILE_ATTRIBUTES = 0xFFFFFFFFu,
};
#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<intptr_t>(-1)))

struct FILETIME {
  DWORD dwLowDateTime, dwHighDateTime;
};
struct WIN32_FIND_DATAW {
  DWORD dwFileAttributes;
  FILETIME ftCreationTime, ftLastAccessTime, ftLastWriteTime;
  DWORD nFileSizeHigh, nFileSizeLow;
  DWORD dwReserved0, dwReserved1;
  WCHAR cFileName[MAX_PATH];
  WCHAR cAlternateFileName[14];
};

// The entries of a folder whose names match the pattern's last part, "."
// and ".." included as Windows gives them; INVALID_HANDLE_VALUE with
// ERROR_FILE_NOT_FOUND or ERROR_PATH_NOT_FOUND when there are none.
HANDLE FindFirstFileW(LPCWSTR lpFileName, WIN32_FIND_DATAW* lpFindFileData);
BOOL FindNextFileW(HANDLE hFindFile, WIN32_FIND_DATAW* lpFindFileData);
BOOL FindClose(HANDLE hFindFile);
DWORD GetFileAttributesW(LPCWSTR lpFileName);
BOOL CopyFileW(LPCWSTR lpExistingFileName, LPCWSTR lpNewFileName, BOOL bFailIfExists);
// Fails when the target exists (ERROR_ALREADY_EXISTS).
BOOL MoveFileW(LPCWSTR lpExistingFileName, LPCWSTR lpNewFileName);
BOOL DeleteFileW(LPCWSTR lpFileName);
// One folder; its parent must exist (ERROR_PATH_NOT_FOUND), it must not
// (ERROR_ALREADY_EXISTS).
BOOL CreateDirectoryW(LPCWSTR lpPathName, void* lpSecurityAttributes);
// An empty folder only (ERROR_DIR_NOT_EMPTY).
BOOL RemoveDirectoryW(LPCWSTR lpPathName);
