// Where a server listens.
#pragma once

#include <string>

struct ListeningSocket {
  int handle = -1;
  std::string host;  // the address as links have it, "127.0.0.1" or "[::1]"
  int port = 0;
  bool isLoopback = false;  // reached from this machine alone
};

/// Listens at a numeric address; port 0 is any that is free. Empty, or why it cannot, in one line.
std::string Listen(const std::string& address, int port, ListeningSocket& socket);
