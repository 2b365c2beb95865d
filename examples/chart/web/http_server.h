// The site over HTTP: connections are watched by threads of the HTTP library, which answer what needs no
// drawing; the rest waits for a few threads that draw, each at a desk of its own.
#pragma once

#include <memory>
#include <string>
#include <vector>

class Site;

struct ServerOptions {
  std::string address = "127.0.0.1";  // to listen at
  int port = 8077;                    // 0: any that is free
  std::vector<std::string> hosts;     // names that requests may be for, beside those of the address
  int threads = 0;                    // that draw; 0: one a core
};

class HttpServer {
 public:
  /// The site stays the caller's and must outlive the server.
  explicit HttpServer(Site& site);
  /// Stops.
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  /// Begins to answer. Empty, or why it cannot.
  std::string Start(const ServerOptions& options);
  /// "http://127.0.0.1:8077/", once started.
  const std::string& Address() const;
  /// Takes no more connections, refuses what waits, answers what is being drawn, and ends.
  void Stop();

 private:
  class Core;
  std::unique_ptr<Core> m_core;
};
