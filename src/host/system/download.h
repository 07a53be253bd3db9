// Downloads through libcurl: file://, http:// and https:// URLs copied to
// a file that is written under a temporary name beside it and renamed into
// place only when the whole transfer succeeded.
#pragma once

#include <cstdio>
#include <string>

namespace zepk::sys {

struct DownloadOptions {
  std::string userAgent;          // empty: libcurl's own
  long connectTimeoutSeconds = 30;
  // A transfer slower than 1 byte a second for this long is given up.
  long stallSeconds = 60;
  bool noCache = true;            // asks proxies and servers for a fresh copy
};

// Copies the resource to an open file: false (with a reason) when the
// transfer failed; *status is the HTTP status (0 for a file URL), whatever
// it is.
bool fetch(const std::string& url, std::FILE* out, const DownloadOptions& options, long* status, std::string* error);

// False with a reason in *error (an HTTP status of 400 or above fails too).
bool download(const std::string& url, const std::string& file, std::string* error,
              const DownloadOptions& options = DownloadOptions());

}  // namespace zepk::sys
