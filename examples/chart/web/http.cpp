#include "web/http.h"

#include <k7/foundation/string.h>

const std::string* HttpRequest::Find(const char* name) const {
  for (const auto& [known, value] : query)
    if (K7String::IComp(known.c_str(), name) == 0) return &value;
  return nullptr;
}

HttpAnswer Refuse(int status, const std::string& why) { return {.status = status, .body = why + "\n"}; }
