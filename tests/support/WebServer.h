// Web servers on the loopback: a well-behaved one, and one that breaks off.
#ifndef KALVISTA_TESTS_SUPPORT_WEB_SERVER_H
#define KALVISTA_TESTS_SUPPORT_WEB_SERVER_H

#include <arpa/inet.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/Files.h"

// A socket that was connected or bound to the port of the tests; -1 when that failed.
inline int loopbackSocket(int (*use)(int, const sockaddr*, socklen_t)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(LOOPBACK_PORT);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int yes = 1;
  setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  if (use(descriptor, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
    return descriptor;
  }
  close(descriptor);
  return -1;
}

// The same, tried again for ten seconds, in which a server starts and one that ends lets go.
inline int awaitLoopbackSocket(int (*use)(int, const sockaddr*, socklen_t)) {
  for (int tries = 0; tries < 2000; ++tries) {
    const int descriptor = loopbackSocket(use);
    if (descriptor >= 0) return descriptor;
    usleep(5000);
  }
  throw std::runtime_error("the port " + std::to_string(LOOPBACK_PORT) + " stays out of reach");
}

// An nginx of the test's own, which serves the folder "web" below its own.
class WebServer {
 public:
  static constexpr const char* kProgram = "/usr/sbin/nginx";

  explicit WebServer(const std::string& folder) : folder_(folder + "/") {
    const std::string configuration = support::writeFile(
        folder_ + "nginx.conf",
        "daemon off; master_process off; pid nginx.pid; error_log error.log; events {}"
        "http { log_format requests '$request_uri'; access_log requests requests;"
        "server { root web; listen 127.0.0.1:" +
            std::to_string(LOOPBACK_PORT) + "; } }");
    process_ = fork();
    if (process_ < 0) throw std::runtime_error("no further process");
    if (process_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      execl(kProgram, kProgram, "-p", folder_.c_str(), "-c", configuration.c_str(), "-e",
            "error.log", nullptr);
      _exit(127);
    }
    try {
      close(awaitLoopbackSocket(connect));
    } catch (const std::runtime_error& error) {
      end();
      throw std::runtime_error(error.what() + ("; " + support::readFile(folder_ + "error.log")));
    }
  }
  ~WebServer() { end(); }

 private:
  void end() const {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }

  std::string folder_;
  pid_t process_;
};

// Gives one answer a connection, byte for byte. Before the last connection breaks off, and the
// server is gone, `last` is called.
inline void answerAndBreakOff(const std::vector<std::string>& answers,
                              const std::function<void()>& last) {
  const int listener = awaitLoopbackSocket(bind);  // the one before may still end
  listen(listener, SOMAXCONN);
  std::thread([=] {
    for (const std::string& answer : answers) {
      const int client = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
      char request[4096];
      recv(client, request, sizeof request, 0);
      send(client, answer.data(), answer.size(), MSG_NOSIGNAL);
      if (&answer == &answers.back()) {
        close(listener);  // the port is free for the next server from here on
        last();
      }
      close(client);
    }
  }).detach();
}

#endif  // KALVISTA_TESTS_SUPPORT_WEB_SERVER_H
