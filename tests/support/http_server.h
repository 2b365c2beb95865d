// Downloads: a server on the loopback address, and whether anything can ask it.
#pragma once

#include <k7/io/io.h>

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>
#endif
#include <map>
#include <string>
#include <thread>

#ifdef _WIN32
using Socket = SOCKET;
constexpr int MSG_NOSIGNAL = 0;
inline Socket OpenSocket() {
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  return socket(AF_INET, SOCK_STREAM, 0);
}
inline void CloseSocket(Socket s) { closesocket(s); }
/// Ends a wait for clients.
inline void StopListening(Socket s) { closesocket(s); }
#else
using Socket = int;
inline Socket OpenSocket() { return socket(AF_INET, SOCK_STREAM, 0); }
inline void CloseSocket(Socket s) { close(s); }
inline void StopListening(Socket s) { shutdown(s, SHUT_RDWR); }
#endif

/// A 64-bit system may have libcurl, which the native services load on POSIX, for no 32-bit program.
inline bool CanDownload(K7IO& io) {
#if defined(__linux__) && !defined(__LP64__)
  void* const library = io.LoadLibraryX("libcurl.so.4");
  io.UnLoadLibrary(library);
  return library != nullptr;
#else
  static_cast<void>(io);
  return true;
#endif
}

/// Answers each path with fixed bytes and closes the connection.
class HttpServer {
 public:
  HttpServer() : m_listener(OpenSocket()) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) == 0 && listen(m_listener, 4) == 0)
      getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
    m_port = ntohs(address.sin_port);
    m_thread = std::thread([this] { Serve(); });
  }
  ~HttpServer() {
    StopListening(m_listener);
    m_thread.join();
    CloseSocket(m_listener);
  }
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /// Before the first request.
  void Answer(const std::string& path, const std::string& bytes) { m_answers[path] = bytes; }
  std::string Url(const std::string& path) const {
    return "http://127.0.0.1:" + std::to_string(m_port) + path;
  }

 private:
  void Serve() {
    constexpr auto NONE = static_cast<Socket>(-1);
    for (Socket client; (client = accept(m_listener, nullptr, nullptr)) != NONE; CloseSocket(client)) {
      std::string request;
      char buf[1024];
      for (ssize_t n;
           request.find("\r\n\r\n") == std::string::npos && (n = recv(client, buf, sizeof buf, 0)) > 0;)
        request.append(buf, static_cast<size_t>(n));
      const size_t start = request.find(' ') + 1;
      const std::string& bytes = m_answers[request.substr(start, request.find(' ', start) - start)];
      for (size_t sent = 0; sent < bytes.size();) {
        const ssize_t n =
            send(client, bytes.data() + sent, static_cast<int>(bytes.size() - sent), MSG_NOSIGNAL);
        if (n <= 0) break;
        sent += static_cast<size_t>(n);
      }
    }
  }

  Socket m_listener;
  int m_port = 0;
  std::map<std::string, std::string> m_answers;
  std::thread m_thread;
};
