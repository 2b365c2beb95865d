#include "web/listening_socket.h"

#include <cerrno>
#include <cstring>
#include <memory>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int BACKLOG = 512;

bool IsLoopback(const sockaddr* address) {
  if (address->sa_family == AF_INET6)
    return IN6_IS_ADDR_LOOPBACK(&reinterpret_cast<const sockaddr_in6*>(address)->sin6_addr) != 0;
  return ntohl(reinterpret_cast<const sockaddr_in*>(address)->sin_addr.s_addr) >> 24 == 127;
}

int PortOf(int handle) {
  sockaddr_storage bound{};
  socklen_t size = sizeof bound;
  if (getsockname(handle, reinterpret_cast<sockaddr*>(&bound), &size) != 0) return 0;
  return ntohs(bound.ss_family == AF_INET6 ? reinterpret_cast<const sockaddr_in6*>(&bound)->sin6_port
                                           : reinterpret_cast<const sockaddr_in*>(&bound)->sin_port);
}

bool Bind(const addrinfo& at, int handle) {
  const int on = 1;
  // So that a server may follow another that has just ended.
  setsockopt(handle, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  return bind(handle, at.ai_addr, at.ai_addrlen) == 0 && listen(handle, BACKLOG) == 0;
}

}  // namespace

std::string Listen(const std::string& address, int port, ListeningSocket& socket) {
  addrinfo wanted{};
  wanted.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (getaddrinfo(address.c_str(), std::to_string(port).c_str(), &wanted, &found) != 0 || !found)
    return "'" + address + "' is no address to listen at, as 127.0.0.1, ::1 or 0.0.0.0";
  const std::unique_ptr<addrinfo, decltype(&freeaddrinfo)> at(found, freeaddrinfo);
  const int handle = ::socket(at->ai_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (handle < 0 || !Bind(*at, handle)) {
    const int why = errno;
    if (handle >= 0) close(handle);
    if (why == EADDRINUSE)
      return "port " + std::to_string(port) + " of " + address +
             " is taken: '--port NUMBER' names another, 0 any";
    return "cannot listen at " + address + " port " + std::to_string(port) + ": " + std::strerror(why);
  }
  socket.handle = handle;
  socket.port = PortOf(handle);
  socket.isLoopback = IsLoopback(at->ai_addr);
  socket.host = at->ai_family == AF_INET6 ? "[" + address + "]" : address;
  return {};
}
