#include "web/http_server.h"

#include "web/desk.h"
#include "web/http_request.h"
#include "web/limits.h"
#include "web/listening_socket.h"
#include "web/site.h"
#include "web/work_queue.h"

#include <k7/foundation/log.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <thread>

#include <microhttpd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point then) {
  return std::chrono::duration<double>(Clock::now() - then).count();
}

// One request from its first line to the last byte of its answer.
struct Exchange {
  explicit Exchange(const char* line) : target(line) { answer.status = 0; }

  const std::string target;
  const Clock::time_point begin = Clock::now();
  MHD_Connection* connection = nullptr;
  std::string method;
  HttpRequest request;
  HttpAnswer answer;
  bool isSeen = false;      // its headers were looked at
  bool isAnswered = false;  // the answer is ready to be sent
};

// A client that has hung up reads no more; what it has sent meanwhile is its next request.
bool HasGone(MHD_Connection* connection) {
  const MHD_ConnectionInfo* const info =
      MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD);
  char next = 0;
  return info && recv(info->connect_fd, &next, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
}

std::unique_ptr<Exchange>* HeldBy(MHD_Connection* connection) {
  const MHD_ConnectionInfo* const info =
      MHD_get_connection_info(connection, MHD_CONNECTION_INFO_SOCKET_CONTEXT);
  return info ? static_cast<std::unique_ptr<Exchange>*>(info->socket_context) : nullptr;
}

std::string_view Header(MHD_Connection* connection, const char* name) {
  const char* const value = MHD_lookup_connection_value(connection, MHD_HEADER_KIND, name);
  return value ? std::string_view(value) : std::string_view();
}

int CountOf(MHD_Connection* connection, const char* name) {
  struct Count {
    const char* name;
    int found;
  } count = {name, 0};
  MHD_get_connection_values(
      connection, MHD_HEADER_KIND,
      [](void* of, MHD_ValueKind, const char* key, const char*) {
        Count& counted = *static_cast<Count*>(of);
        if (strcasecmp(key, counted.name) == 0) ++counted.found;
        return MHD_YES;
      },
      &count);
  return count.found;
}

HttpAnswer Busy() {
  HttpAnswer answer = Refuse(503, "too much is being drawn at the moment");
  answer.headers.emplace_back("Retry-After", std::to_string(RETRY_SECONDS));
  return answer;
}

}  // namespace

class HttpServer::Core {
 public:
  explicit Core(Site& site) : m_site(site) {}

  std::string Start(const ServerOptions& options);
  void Stop();
  const std::string& Address() const { return m_address; }

 private:
  static void* OnLine(void* self, const char* target, MHD_Connection* connection);
  static MHD_Result OnRequest(void* self, MHD_Connection* connection, const char*, const char* method,
                              const char*, const char*, size_t* uploaded, void** exchange);
  static void OnConnection(void* self, MHD_Connection* connection, void** held,
                           MHD_ConnectionNotificationCode code);
  static void OnEnd(void* self, MHD_Connection*, void** exchange, MHD_RequestTerminationCode);

  MHD_Result Take(Exchange& exchange);
  bool Check(Exchange& exchange);
  MHD_Result Send(Exchange& exchange);
  void AddHeaders(const Exchange& exchange, MHD_Response* response) const;
  void Log(const Exchange& exchange) const;
  void Draw();
  void AnswerAt(Desk& desk, Exchange& exchange);

  Site& m_site;
  std::vector<std::string> m_hosts;
  std::string m_address;
  std::string m_tag;  // data and program are the same as long as the process lives, and so are answers
  MHD_Daemon* m_daemon = nullptr;
  WorkQueue<Exchange*> m_queue{MAX_QUEUE};
  std::vector<std::thread> m_threads;
  std::atomic<int> m_exchanges{0};
};

// A connection holds its exchange until the headers are read: of a request that never comes so far the end is
// not always told.
void HttpServer::Core::OnConnection(void*, MHD_Connection*, void** held,
                                    MHD_ConnectionNotificationCode code) {
  if (code == MHD_CONNECTION_NOTIFY_STARTED)
    *held = new (std::nothrow) std::unique_ptr<Exchange>;
  else
    delete static_cast<std::unique_ptr<Exchange>*>(*held);
}

void* HttpServer::Core::OnLine(void*, const char* target, MHD_Connection* connection) {
  std::unique_ptr<Exchange>* const held = HeldBy(connection);
  if (!held) return nullptr;
  try {
    *held = std::make_unique<Exchange>(target);
    return held->get();
  } catch (const std::exception&) {
    return nullptr;
  }
}

MHD_Result HttpServer::Core::OnRequest(void* self, MHD_Connection* connection, const char*,
                                       const char* method, const char*, const char*, size_t*,
                                       void** context) {
  auto* const exchange = static_cast<Exchange*>(*context);
  if (!exchange) return MHD_NO;
  auto* const core = static_cast<Core*>(self);
  try {
    exchange->connection = connection;
    if (!exchange->isSeen) {
      exchange->isSeen = true;
      static_cast<void>(HeldBy(connection)->release());  // from here on `OnEnd` is told
      ++core->m_exchanges;
      exchange->method = method;
      return core->Check(*exchange) ? MHD_YES : core->Send(*exchange);
    }
    return exchange->isAnswered ? core->Send(*exchange) : core->Take(*exchange);
  } catch (const std::exception&) {
    return MHD_NO;
  }
}

void HttpServer::Core::OnEnd(void* self, MHD_Connection* connection, void** context,
                             MHD_RequestTerminationCode) {
  auto* const exchange = static_cast<Exchange*>(*context);
  if (!exchange) return;
  auto* const core = static_cast<Core*>(self);
  core->Log(*exchange);
  *context = nullptr;
  if (!exchange->isSeen) {
    HeldBy(connection)->reset();
    return;
  }
  delete exchange;
  --core->m_exchanges;
}

// False with the answer when the request is refused by its headers.
bool HttpServer::Core::Check(Exchange& exchange) {
  MHD_Connection* const connection = exchange.connection;
  const std::string_view host = Header(connection, MHD_HTTP_HEADER_HOST);
  const int status = ReadTarget(exchange.target, exchange.request);
  if (exchange.method != "GET" && exchange.method != "HEAD") {
    exchange.answer = Refuse(405, "only GET and HEAD are answered");
    exchange.answer.headers.emplace_back("Allow", "GET, HEAD");
  } else if (!Header(connection, MHD_HTTP_HEADER_TRANSFER_ENCODING).empty() ||
             CountOf(connection, MHD_HTTP_HEADER_CONTENT_LENGTH) > 0) {
    exchange.answer = Refuse(400, "a request has no body here");
  } else if (host.empty() || CountOf(connection, MHD_HTTP_HEADER_HOST) != 1) {
    exchange.answer = Refuse(400, "a request names one host");
  } else if (!IsHost(host, m_hosts)) {
    exchange.answer =
        Refuse(421, "this server is not called so: open " + m_address + " or name the host with --host");
  } else if (status != 200) {
    exchange.answer =
        Refuse(status, status == 414 ? "the address is too long" : "the address cannot be read");
  } else if (!Site::IsOpen(exchange.request) && Header(connection, "Sec-Fetch-Site") == "cross-site" &&
             Header(connection, "Sec-Fetch-Mode") != "navigate") {
    // Another site may link to the page, but has no use for its parts.
    exchange.answer = Refuse(403, "this is for pages of this server");
  } else {
    exchange.request.origin = "http://" + std::string(host);
    return true;
  }
  return false;
}

// Answers what needs no drawing, and has the rest wait.
MHD_Result HttpServer::Core::Take(Exchange& exchange) {
  std::optional<HttpAnswer> known = m_site.AnswerAtOnce(exchange.request);
  const bool hasIt = HoldsTag(Header(exchange.connection, MHD_HTTP_HEADER_IF_NONE_MATCH), m_tag);
  if (hasIt && (!known || known->status == 200)) known = HttpAnswer{.status = 304};
  if (known) {
    exchange.answer = std::move(*known);
    return Send(exchange);
  }
  exchange.isAnswered = true;
  // First, for a thread that draws may be done before this one goes on.
  MHD_suspend_connection(exchange.connection);
  if (!m_queue.Push(Site::WorkKey(exchange.request), &exchange)) {
    exchange.answer = Busy();
    MHD_resume_connection(exchange.connection);
  }
  return MHD_YES;
}

void HttpServer::Core::AddHeaders(const Exchange& exchange, MHD_Response* response) const {
  static constexpr const char* POLICY = "Content-Security-Policy";
  const HttpAnswer& answer = exchange.answer;
  const auto add = [&](const char* name, const std::string& value) {
    MHD_add_response_header(response, name, value.c_str());
  };
  bool hasPolicy = false;
  for (const auto& [name, value] : answer.headers) {
    add(name.c_str(), value);
    hasPolicy |= name == POLICY;
  }
  // Whatever a record's text says, what is no page runs and fetches nothing when it is opened by itself.
  // A 304 leaves the policy as it was sent.
  if (!hasPolicy && answer.status != 304) add(POLICY, "default-src 'none'; style-src 'unsafe-inline'");
  if (answer.status != 304) add(MHD_HTTP_HEADER_CONTENT_TYPE, answer.type);
  if (answer.status == 200 || answer.status == 304) {
    add(MHD_HTTP_HEADER_ETAG, m_tag);
    add(MHD_HTTP_HEADER_CACHE_CONTROL, "no-cache");  // kept, but asked for whether it still holds
  } else {
    add(MHD_HTTP_HEADER_CACHE_CONTROL, "no-store");
  }
  add("X-Content-Type-Options", "nosniff");
  add("Referrer-Policy", "no-referrer");
  if (!Site::IsOpen(exchange.request)) {
    add("Cross-Origin-Resource-Policy", "same-origin");
    return;
  }
  add(MHD_HTTP_HEADER_VARY, "Origin");
  const std::string origin(Header(exchange.connection, MHD_HTTP_HEADER_ORIGIN));
  if (IsLoopbackOrigin(origin)) add(MHD_HTTP_HEADER_ACCESS_CONTROL_ALLOW_ORIGIN, origin);
}

MHD_Result HttpServer::Core::Send(Exchange& exchange) {
  // The exchange outlives the response.
  std::string& body = exchange.answer.body;
  MHD_Response* const response =
      MHD_create_response_from_buffer(body.size(), body.data(), MHD_RESPMEM_PERSISTENT);
  if (!response) return MHD_NO;
  AddHeaders(exchange, response);
  const MHD_Result queued =
      MHD_queue_response(exchange.connection, static_cast<unsigned>(exchange.answer.status), response);
  MHD_destroy_response(response);
  return queued;
}

void HttpServer::Core::Log(const Exchange& exchange) const {
  const std::string line = Escaped(exchange.method) + " " + Escaped(exchange.target);
  // Two percent signs in a row become one in the log's line.
  std::string doubled;
  for (const char c : line) doubled += c == '%' ? "%%" : std::string(1, c);
  const int bytes = static_cast<int>(exchange.answer.body.size());
  K7Log::LogMessage(K7_LOG_INFO, "%s %d %d %.1f ms", doubled.c_str(), exchange.answer.status, bytes,
                    SecondsSince(exchange.begin) * 1000);
}

void HttpServer::Core::AnswerAt(Desk& desk, Exchange& exchange) {
  if (HasGone(exchange.connection))
    exchange.answer = Refuse(503, "nobody waits for the answer");
  else if (SecondsSince(exchange.begin) > MAX_WAIT_SECONDS)
    exchange.answer = Busy();
  else
    exchange.answer = Site::Answer(exchange.request, desk);
}

void HttpServer::Core::Draw() {
  Desk desk(m_site.Data(), &m_site.Tiles());
  while (auto taken = m_queue.Take()) {
    AnswerAt(desk, *taken->work);
    m_queue.Done(taken->key);
    // The exchange may be gone as soon as this is called.
    MHD_resume_connection(taken->work->connection);
  }
}

std::string HttpServer::Core::Start(const ServerOptions& options) {
  ListeningSocket socket;
  if (std::string problem = Listen(options.address, options.port, socket); !problem.empty()) return problem;
  m_address = "http://" + socket.host + ":" + std::to_string(socket.port) + "/";
  m_hosts = {"localhost", "127.0.0.1", "[::1]", socket.host};
  m_hosts.insert(m_hosts.end(), options.hosts.begin(), options.hosts.end());
  m_tag = "\"k7-" + std::to_string(std::chrono::system_clock::now().time_since_epoch().count()) + "\"";
  const unsigned cores = std::max(1U, std::thread::hardware_concurrency());
  m_daemon = MHD_start_daemon(
      MHD_USE_EPOLL_INTERNAL_THREAD | MHD_ALLOW_SUSPEND_RESUME | MHD_USE_ITC, 0, nullptr, nullptr, OnRequest,
      this, MHD_OPTION_LISTEN_SOCKET, socket.handle, MHD_OPTION_THREAD_POOL_SIZE, std::min(cores, 4U),
      MHD_OPTION_URI_LOG_CALLBACK, OnLine, this, MHD_OPTION_NOTIFY_COMPLETED, OnEnd, this,
      MHD_OPTION_NOTIFY_CONNECTION, OnConnection, this, MHD_OPTION_CONNECTION_MEMORY_LIMIT, MAX_HEADER_BYTES,
      MHD_OPTION_CONNECTION_LIMIT, MAX_CONNECTIONS, MHD_OPTION_CONNECTION_TIMEOUT, IDLE_SECONDS,
      MHD_OPTION_PER_IP_CONNECTION_LIMIT, socket.isLoopback ? 0U : MAX_CONNECTIONS_OF_ADDRESS,
      MHD_OPTION_END);
  if (!m_daemon) {
    close(socket.handle);
    return "cannot start to serve: " + std::string(std::strerror(errno));
  }
  for (int i = 0; i < (options.threads > 0 ? options.threads : static_cast<int>(cores)); ++i)
    m_threads.emplace_back(&Core::Draw, this);
  return {};
}

void HttpServer::Core::Stop() {
  if (!m_daemon) return;
  const int listening = MHD_quiesce_daemon(m_daemon);
  for (Exchange* const waiting : m_queue.Close()) {
    waiting->answer = Busy();
    MHD_resume_connection(waiting->connection);
  }
  for (std::thread& thread : m_threads) thread.join();
  // What has been answered is sent; a client that does not read keeps nobody waiting.
  constexpr double SECONDS_TO_SEND = 2;
  for (const Clock::time_point begin = Clock::now();
       m_exchanges > 0 && SecondsSince(begin) < SECONDS_TO_SEND;)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  MHD_stop_daemon(m_daemon);
  m_daemon = nullptr;
  if (listening >= 0) close(listening);
}

HttpServer::HttpServer(Site& site) : m_core(std::make_unique<Core>(site)) {}
HttpServer::~HttpServer() { Stop(); }
std::string HttpServer::Start(const ServerOptions& options) { return m_core->Start(options); }
const std::string& HttpServer::Address() const { return m_core->Address(); }
void HttpServer::Stop() { m_core->Stop(); }
