// Downloads from a file URL and from an HTTP server on this machine that
// the test starts (Python's http.server), written whole or not at all.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <netinet/in.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "host/system/download.h"
#include "host/system/utf.h"
#include "host/wincompat.h"

namespace fs = std::filesystem;
namespace sys = zepk::sys;

namespace {

std::string readAll(const fs::path& p) {
  std::ifstream f(p, std::ios::binary);
  std::stringstream ss;
  ss << f.rdbuf();
  return ss.str();
}

// A free port on the loopback address.
int freePort() {
  int s = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  a.sin_port = 0;
  ::bind(s, reinterpret_cast<sockaddr*>(&a), sizeof a);
  socklen_t len = sizeof a;
  ::getsockname(s, reinterpret_cast<sockaddr*>(&a), &len);
  int port = ntohs(a.sin_port);
  ::close(s);
  return port;
}

bool canConnect(int port) {
  int s = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  a.sin_port = htons(static_cast<uint16_t>(port));
  bool ok = ::connect(s, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0;
  ::close(s);
  return ok;
}

class Download : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("zepk-dl-" + std::to_string(::getpid()) + "-" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_ / "served");
    // Bytes of every value, and more than one network read's worth.
    for (int i = 0; i < 70000; ++i) payload_ += static_cast<char>((i * 7 + i / 256) & 0xFF);
    std::ofstream(dir_ / "served" / "data.bin", std::ios::binary) << payload_;
  }
  void TearDown() override {
    if (server_ > 0) {
      ::kill(server_, SIGTERM);
      ::waitpid(server_, nullptr, 0);
    }
    fs::remove_all(dir_);
  }
  // Serves dir_/served on 127.0.0.1; the port, or 0 if it did not start.
  int startServer() {
    int port = freePort();
    server_ = ::fork();
    if (server_ == 0) {
      ::chdir((dir_ / "served").c_str());
      int devnull = ::open("/dev/null", O_WRONLY);
      ::dup2(devnull, 1);
      ::dup2(devnull, 2);
      std::string p = std::to_string(port);
      ::execl("/usr/bin/python3", "python3", "-m", "http.server", p.c_str(), "--bind", "127.0.0.1",
              static_cast<char*>(nullptr));
      ::_exit(127);
    }
    for (int i = 0; i < 200; ++i) {
      if (canConnect(port)) return port;
      ::usleep(50000);
    }
    return 0;
  }
  fs::path dir_;
  std::string payload_;
  pid_t server_ = -1;
};

TEST_F(Download, FromAFileUrl) {
  fs::path out = dir_ / "copy.bin";
  std::string why;
  ASSERT_TRUE(sys::download("file://" + (dir_ / "served" / "data.bin").string(), out.string(), &why)) << why;
  EXPECT_EQ(readAll(out), payload_);
  // A missing source leaves what was there and no stray file.
  std::ofstream(out, std::ios::binary | std::ios::trunc) << "old";
  EXPECT_FALSE(sys::download("file://" + (dir_ / "nothing.bin").string(), out.string(), &why));
  EXPECT_FALSE(why.empty());
  EXPECT_EQ(readAll(out), "old");
  int files = 0;
  for (auto& e : fs::directory_iterator(dir_)) files += e.is_regular_file();
  EXPECT_EQ(files, 1);
  // The Windows entry point takes host paths.
  std::u16string url = sys::fromUtf8("file://" + (dir_ / "served" / "data.bin").string());
  EXPECT_EQ(URLDownloadToFileW(nullptr, url.c_str(), sys::fromUtf8((dir_ / "w.bin").string()).c_str(), 0, nullptr),
            S_OK);
  EXPECT_EQ(readAll(dir_ / "w.bin"), payload_);
  EXPECT_NE(URLDownloadToFileW(nullptr, u"ftp://127.0.0.1/x", u"/tmp/never", 0, nullptr), S_OK);
}

TEST_F(Download, FromAnHttpServerOnThisMachine) {
  int port = startServer();
  ASSERT_GT(port, 0) << "python3 -m http.server did not start";
  std::string base = "http://127.0.0.1:" + std::to_string(port) + "/";
  fs::path out = dir_ / "got.bin";
  std::string why;
  ASSERT_TRUE(sys::download(base + "data.bin", out.string(), &why)) << why;
  EXPECT_EQ(readAll(out), payload_);
  // A 404 is a failure, and the file keeps what it had.
  EXPECT_FALSE(sys::download(base + "missing.bin", out.string(), &why));
  EXPECT_NE(why.find("404"), std::string::npos);
  EXPECT_EQ(readAll(out), payload_);
  // A target folder that is not there fails cleanly.
  EXPECT_FALSE(sys::download(base + "data.bin", (dir_ / "no" / "such" / "x").string(), &why));
}

TEST_F(Download, InternetReadsInPieces) {
  int port = startServer();
  ASSERT_GT(port, 0) << "python3 -m http.server did not start";
  std::u16string base = sys::fromUtf8("http://127.0.0.1:" + std::to_string(port) + "/");
  HINTERNET session = InternetOpenW(u"Glegri/1.0", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
  ASSERT_NE(session, nullptr);
  HINTERNET url = InternetOpenUrlW(session, (base + u"data.bin").c_str(), nullptr, 0, 0x4000000, 0);
  ASSERT_NE(url, nullptr);
  // Pieces of at most 1023 bytes until a read gives none.
  std::string got;
  char buf[1023];
  DWORD n = 0;
  int reads = 0;
  while (InternetReadFile(url, buf, sizeof buf, &n) && n > 0) {
    got.append(buf, n);
    ++reads;
  }
  EXPECT_EQ(got, payload_);
  EXPECT_EQ(reads, static_cast<int>((payload_.size() + 1022) / 1023));
  DWORD status = 0, len = 4;
  ASSERT_TRUE(HttpQueryInfoW(url, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &len, nullptr));
  EXPECT_EQ(status, 200u);
  EXPECT_TRUE(InternetCloseHandle(url));
  EXPECT_FALSE(InternetCloseHandle(url));
  // An error page opens like any answer; its status tells.
  url = InternetOpenUrlW(session, (base + u"missing.bin").c_str(), nullptr, 0, 0, 0);
  ASSERT_NE(url, nullptr);
  len = 4;
  ASSERT_TRUE(HttpQueryInfoW(url, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &len, nullptr));
  EXPECT_EQ(status, 404u);
  InternetCloseHandle(url);
  // No answer at all is a failed open.
  std::u16string dead = sys::fromUtf8("http://127.0.0.1:" + std::to_string(freePort()) + "/x");
  EXPECT_EQ(InternetOpenUrlW(session, dead.c_str(), nullptr, 0, 0, 0), nullptr);
  EXPECT_EQ(InternetOpenUrlW(nullptr, (base + u"data.bin").c_str(), nullptr, 0, 0, 0), nullptr);
  EXPECT_TRUE(InternetCloseHandle(session));
}

}  // namespace
