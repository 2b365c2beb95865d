// What is asked and answered over HTTP, free of the library that carries it.
#pragma once

#include <span>
#include <string>
#include <utility>
#include <vector>

class Desk;

/// A GET or HEAD that has been taken apart. Every text is the client's and means harm until it is checked.
struct HttpRequest {
  std::string path;                                        ///< decoded, with '/' in front
  std::vector<std::pair<std::string, std::string>> query;  ///< names and values, decoded
  std::string origin;                                      ///< "http://127.0.0.1:8077": what links begin with

  /// The first value of that name, without regard to case; null for none.
  const std::string* Find(const char* name) const;
};

struct HttpAnswer {
  int status = 200;
  std::string type = "text/plain; charset=utf-8";
  std::string body{};
  std::vector<std::pair<std::string, std::string>> headers{};
};

/// A line of text that says why there is no other answer.
HttpAnswer Refuse(int status, const std::string& why);

/// Who answers a path: called by a thread that draws, with its own desk.
struct Endpoint {
  const char* path;  ///< one that ends in '/' has all below it
  HttpAnswer (*answer)(const HttpRequest& request, Desk& desk);
  bool open = false;  ///< pages of other ports of this machine may read what it answers
};

/// All of them; the longest path that fits has the request.
std::span<const Endpoint> Endpoints();
