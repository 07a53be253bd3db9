// The LISP functions of the encodings and ciphers family (codec_lisp.cpp)
// and of the files, paths and system family (system_lisp.cpp).
#pragma once

namespace zepk::services {

// Encodings and ciphers. Apart from String-Encrypt and String-unCrypt they
// report nothing: an argument they cannot read, or a file they cannot
// read, gives no result.
int lispFileBinary2Text();
int lispFileText2Binary();
int lispFileBinary2TextStr();
int lispFileTextStr2Binary();
int lispFileBase64Encode();
int lispFileBase64Decode();
int lispFileMD5();
int lispFileDESEncrypt();
int lispFileDESDecrypt();
int lispStringEncrypt();
int lispStringURLCoding();
int lispStringBase64Encode();
int lispStringBase64Decode();
int lispStringMD5();
int lispStringDESEncrypt();
int lispStringDESDecrypt();
int lispStringCrypt();
int lispStringUnCrypt();

// Files, paths and system.
int lispGetApiPath();
int lispGetAcadPath();
int lispSetWindowText();
int lispGetWindowText();
int lispRegistryRead();
int lispRegistryWrite();
int lispRegistryDelete();
int lispRegistryDescendents();
int lispSysCmd();
int lispSysCreateLink();
int lispSysCreateDesktopLink();
int lispGetClipBoardText();
int lispSetClipBoardText();
int lispFileGetFolder();
int lispFileDir();
int lispFileDelFolder();
int lispFileDelete();
int lispFileCreateFolder();
int lispFileCopy();
int lispFileMove();
int lispFileReName();
int lispFileGetFiled();
int lispFileSaveTextStr();
int lispFileReadText();
int lispFileAddToSupportPath();
int lispFileAddToStartUp();
int lispFileDownload();
int lispFileGetDesktopFolder();
int lispFileGetMyDocumentFolder();
int lispFileGetSpecialFolder();
int lispFileShortCut();

}  // namespace zepk::services
