// k7chart serve: maps, tiles and a page to look at them, over HTTP.

#include "app/chart_data.h"
#include "app_common/shared_data.h"
#include "app_common/verb.h"
#include "web/http_server.h"
#include "web/site.h"

#include <k7/foundation/log.h>

#include <csignal>
#include <cstdio>

#include <pthread.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

struct ServeOptions {
  ServerOptions server;
  int cacheMB = 64;
  std::string log;
};

std::string SetWhole(const char* text, const char* what, int least, int most, int& value) {
  double number = 0;
  if (!ReadNumber(text, number) || number < least || number > most || number != static_cast<int>(number))
    return std::string(what) + " is a whole number from " + std::to_string(least) + " to " +
           std::to_string(most) + ", not " + Quoted(text);
  value = static_cast<int>(number);
  return {};
}

constexpr OptionRow<ServeOptions> SERVE_OPTIONS[] = {
    {"--port", "NUMBER", "where to listen (default 8077); 0 takes any port that is free",
     [](const char* text, ServeOptions& options) {
       return SetWhole(text, "the port", 0, 65535, options.server.port);
     }},
    {"--listen", "ADDRESS",
     "listens at that address, as 0.0.0.0 for all of this machine's, instead of 127.0.0.1, which only this "
     "machine reaches. Whoever reaches it may look at all data that are served: there is no password and no "
     "encryption. Name the machine with --host as its clients do",
     [](const char* text, ServeOptions& options) {
       options.server.address = text;
       return std::string();
     }},
    {"--host", "NAME",
     "answers requests for that name, beside localhost, 127.0.0.1, ::1 and the address of --listen; others "
     "are "
     "refused, so that no foreign page reaches the server under a name of its own; may be repeated",
     [](const char* text, ServeOptions& options) {
       options.server.hosts.emplace_back(text);
       return std::string();
     },
     true},
    {"--threads", "NUMBER", "how many maps are drawn at once, 1 to 64 (default: one a core)",
     [](const char* text, ServeOptions& options) {
       return SetWhole(text, "the number of threads", 1, 64, options.server.threads);
     }},
    {"--cache", "MB", "keeps that many megabytes of tiles, 0 to 65536 (default 64)",
     [](const char* text, ServeOptions& options) {
       return SetWhole(text, "the cache", 0, 65536, options.cacheMB);
     }},
    {"--log", "FILE", "appends a line for each request: time, method, address, status, bytes, milliseconds",
     [](const char* text, ServeOptions& options) {
       options.log = text;
       return std::string();
     }},
};

// Signals that end the server wait for it, unless who started the program wants them to be ignored.
sigset_t HoldSignals() {
  sigset_t ends;
  sigemptyset(&ends);
  for (const int signal : {SIGINT, SIGTERM}) {
    struct sigaction known {};
    sigaction(signal, nullptr, &known);
    if (known.sa_handler != SIG_IGN) sigaddset(&ends, signal);
  }
  pthread_sigmask(SIG_BLOCK, &ends, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  return ends;
}

// Each map takes and gives back tens of megabytes. What goes back to the system comes anew page by page,
// which takes a tenth of the map's time: so each thread keeps what a map takes.
void KeepMemory() {
#ifdef __GLIBC__
  static const int MOST_KEPT = 64 << 20, MOST_ONE = 32 << 20;
  mallopt(M_TRIM_THRESHOLD, MOST_KEPT);
  mallopt(M_MMAP_THRESHOLD, MOST_ONE);
#endif
}

class Serve : public Verb {
 public:
  void AddOptions(OptionTable& table) override {
    table.Add(SERVE_OPTIONS, m_options);
    AddDataOptions(table, m_layers);
  }

  std::string Run() override {
    ChartData data;
    if (std::string problem = data.Open(m_layers); !problem.empty()) return problem;
    Site site(data, static_cast<size_t>(m_options.cacheMB) << 20);
    if (std::string problem = site.Open(PageFolder()); !problem.empty()) return problem;
    if (!m_options.log.empty() &&
        (!K7Log::CreateLogFile(m_options.log.c_str(), nullptr) || !K7Log::LogMessage(K7_LOG_INFO, "serving")))
      return "cannot write the log " + Quoted(m_options.log);
    KeepMemory();
    const sigset_t ends = HoldSignals();
    HttpServer server(site);
    if (std::string problem = server.Start(m_options.server); !problem.empty()) return problem;
    std::printf("%s\n", server.Address().c_str());
    std::fflush(stdout);
    int signal = 0;
    sigwait(&ends, &signal);
    server.Stop();
    K7Log::CloseLogFile();
    return {};
  }

 private:
  ServeOptions m_options;
  LayerOptions m_layers;
};

}  // namespace

std::unique_ptr<Verb> MakeServe() { return std::make_unique<Serve>(); }
