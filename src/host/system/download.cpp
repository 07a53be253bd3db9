#include "host/system/download.h"

#include <curl/curl.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <memory>
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

bool fetch(const std::string& url, std::FILE* out, const DownloadOptions& opt, long* status, std::string* error) {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
  *status = 0;
  CURL* c = curl_easy_init();
  if (!c) {
    if (error) *error = "cannot start the transfer";
    return false;
  }
  char errbuf[CURL_ERROR_SIZE] = {0};
  curl_easy_setopt(c, CURLOPT_URL, url.c_str());
  curl_easy_setopt(c, CURLOPT_WRITEFUNCTION, writeChunk);
  curl_easy_setopt(c, CURLOPT_WRITEDATA, out);
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
  curl_easy_getinfo(c, CURLINFO_RESPONSE_CODE, status);
  curl_easy_cleanup(c);
  curl_slist_free_all(headers);
  if (rc != CURLE_OK) {
    if (error) *error = errbuf[0] ? errbuf : curl_easy_strerror(rc);
    return false;
  }
  return true;
}

bool download(const std::string& url, const std::string& file, std::string* error, const DownloadOptions& opt) {
  auto fail = [&](const std::string& why) {
    if (error) *error = why;
    return false;
  };
  if (url.empty() || file.empty()) return fail("no URL or no file");
  std::string tmp = file + ".part" + std::to_string(::getpid());
  std::FILE* f = std::fopen(tmp.c_str(), "wb");
  if (!f) return fail("cannot write " + file);
  long status = 0;
  std::string why;
  bool ok = fetch(url, f, opt, &status, &why);
  bool written = std::fflush(f) == 0 && ::fsync(fileno(f)) == 0;
  written = std::fclose(f) == 0 && written;
  if (!ok) {
    // why says it
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

// ------------------------------------------------------------- WinINet

namespace {

struct Inet {
  bool session = true;
  std::string agent;
  std::FILE* body = nullptr;  // a request's resource, read back in order
  long status = 0;
};

std::map<void*, std::unique_ptr<Inet>>& inets() {
  static auto* m = new std::map<void*, std::unique_ptr<Inet>>;
  return *m;
}

Inet* inet(HINTERNET h) {
  auto it = inets().find(h);
  return it == inets().end() ? nullptr : it->second.get();
}

HINTERNET keep(std::unique_ptr<Inet> i) {
  void* h = i.get();
  inets().emplace(h, std::move(i));
  return h;
}

}  // namespace

HINTERNET InternetOpenW(LPCWSTR agent, DWORD, LPCWSTR, LPCWSTR, DWORD) {
  auto i = std::make_unique<Inet>();
  i->agent = agent ? zepk::sys::toUtf8(agent) : std::string();
  return keep(std::move(i));
}

HINTERNET InternetOpenUrlW(HINTERNET session, LPCWSTR url, LPCWSTR, DWORD, DWORD flags, UINT_PTR) {
  Inet* s = inet(session);
  if (!s || !s->session || !url || !*url) {
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
  }
  zepk::sys::DownloadOptions opt;
  opt.userAgent = s->agent;
  opt.noCache = (flags & (INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE)) != 0;
  auto req = std::make_unique<Inet>();
  req->session = false;
  // The resource is fetched whole into an unnamed file when the URL is
  // opened; reads then hand it out.
  req->body = std::tmpfile();
  if (!req->body) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
  if (!zepk::sys::fetch(zepk::sys::toUtf8(url), req->body, opt, &req->status, nullptr)) {
    std::fclose(req->body);
    SetLastError(12029);  // ERROR_INTERNET_CANNOT_CONNECT
    return nullptr;
  }
  std::rewind(req->body);
  return keep(std::move(req));
}

BOOL InternetReadFile(HINTERNET h, void* buf, DWORD toRead, LPDWORD read) {
  Inet* r = inet(h);
  if (!r || r->session || !read || (!buf && toRead)) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  size_t n = toRead ? std::fread(buf, 1, toRead, r->body) : 0;
  *read = static_cast<DWORD>(n);
  return std::ferror(r->body) ? FALSE : TRUE;
}

BOOL InternetCloseHandle(HINTERNET h) {
  auto it = inets().find(h);
  if (it == inets().end()) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  if (it->second->body) std::fclose(it->second->body);
  inets().erase(it);
  return TRUE;
}

BOOL HttpQueryInfoW(HINTERNET h, DWORD level, void* buf, LPDWORD len, LPDWORD) {
  Inet* r = inet(h);
  if (!r || r->session || !buf || !len) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  if ((level & 0xFFFF) != HTTP_QUERY_STATUS_CODE) {
    SetLastError(12150);  // ERROR_HTTP_HEADER_NOT_FOUND
    return FALSE;
  }
  if (level & HTTP_QUERY_FLAG_NUMBER) {
    if (*len < 4) {
      *len = 4;
      SetLastError(122);
      return FALSE;
    }
    DWORD v = static_cast<DWORD>(r->status);
    std::memcpy(buf, &v, 4);
    *len = 4;
    return TRUE;
  }
  std::u16string text = zepk::sys::fromUtf8(std::to_string(r->status));
  DWORD need = static_cast<DWORD>((text.size() + 1) * 2);
  if (*len < need) {
    *len = need;
    SetLastError(122);
    return FALSE;
  }
  std::memcpy(buf, text.c_str(), need);
  *len = need - 2;
  return TRUE;
}
