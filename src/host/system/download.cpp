#include "host/system/download.h"

#include <curl/curl.h>
#include <unistd.h>

#include <cstdio>
#include <mutex>

#include "host/system/paths.h"
#include "host/system/utf.h"
#include "host/wincompat.h"

namespace zepk::sys {

namespace {

size_t writeChunk(char* data, size_t size, size_t n, void* user) {
  return std::fwrite(data, size, n, static_cast<std::FILE*>(user)) * size;
}

}  // namespace

bool download(const std::string& url, const std::string& file, std::string* error, const DownloadOptions& opt) {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
  auto fail = [&](const std::string& why) {
    if (error) *error = why;
    return false;
  };
  if (url.empty() || file.empty()) return fail("no URL or no file");
  std::string tmp = file + ".part" + std::to_string(::getpid());
  std::FILE* f = std::fopen(tmp.c_str(), "wb");
  if (!f) return fail("cannot write " + file);
  CURL* c = curl_easy_init();
  if (!c) {
    std::fclose(f);
    std::remove(tmp.c_str());
    return fail("cannot start the transfer");
  }
  char errbuf[CURL_ERROR_SIZE] = {0};
  curl_easy_setopt(c, CURLOPT_URL, url.c_str());
  curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, writeChunk);
  curl_easy_setopt(c, CURLOPT_WRITEDATA, f);
  curl_easy_setopt(c, CURLOPT_ERRORBUFFER, errbuf);
  curl_easy_setopt(c, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(c, CURLOPT_MAXREDIRS, 10L);
  curl_easy_setopt(c, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(c, CURLOPT_CONNECTTIMEOUT, opt.connectTimeoutSeconds);
  curl_easy_setopt(c, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl_easy_setopt(c, CURLOPT_LOW_SPEED_TIME, opt.stallSeconds);
  curl_easy_setopt(c, CURLOPT_PROTOCOLS_STR, "file,http,https");
  curl_easy_setopt(c, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  if (!opt.userAgent.empty()) curl_easy_setopt(c, CURLOPT_USERAGENT, opt.userAgent.c_str());
  curl_slist* headers = nullptr;
  if (opt.noCache) {
    headers = curl_slist_append(headers, "Cache-Control: no-cache");
    headers = curl_slist_append(headers, "Pragma: no-cache");
    curl_easy_setopt(c, CURLOPT_HTTPHEADER, headers);
  }
  CURLcode rc = curl_easy_perform(c);
  long status = 0;
  curl_easy_getinfo(c, CURLINFO_RESPONSE_CODE, &status);
  curl_easy_cleanup(c);
  curl_slist_free_all(headers);
  bool written = std::fflush(f) == 0 && ::fsync(fileno(f)) == 0;
  written = std::fclose(f) == 0 && written;
  std::string why;
  if (rc != CURLE_OK) {
    why = errbuf[0] ? errbuf : curl_easy_strerror(rc);
  } else if (status >= 400) {
    why = "the server answered " + std::to_string(status);
  } else if (!written) {
    why = "cannot write " + file;
  } else if (std::rename(tmp.c_str(), file.c_str()) != 0) {
    why = "cannot write " + file;
  }
  if (!why.empty()) {
    std::remove(tmp.c_str());
    return fail(why);
  }
  return true;
}

}  // namespace zepk::sys

LONG URLDownloadToFileW(void*, LPCWSTR url, LPCWSTR file, DWORD, void*) {
  using namespace zepk;
  if (!url || !file || !*url || !*file) return E_FAIL;
  std::string u = sys::toUtf8(url);
  std::string target = sys::toNativePath(file);
  return sys::download(u, target, nullptr) ? S_OK : INET_E_DOWNLOAD_FAILURE;
}
