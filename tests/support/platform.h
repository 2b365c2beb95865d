// Services of POSIX systems that tests make use of. Elsewhere what has no counterpart has a stand-in here
// that fails, so that a test compiles; it is skipped there and says why.
#pragma once

#ifdef _WIN32

#include <process.h>
#include <sys/stat.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>

constexpr bool ON_WINDOWS = true;

inline int setenv(const char* name, const char* value, int) { return _putenv_s(name, value); }
inline int unsetenv(const char* name) { return _putenv_s(name, ""); }
inline int mkfifo(const char*, int) { return -1; }
inline int chown(const char*, int, int) { return -1; }
inline pid_t fork() { return -1; }
inline pid_t waitpid(pid_t, int*, int) { return -1; }
inline int kill(pid_t, int) { return -1; }
inline unsigned alarm(unsigned) { return 0; }
inline bool WIFEXITED(int) { return false; }
constexpr int SIGKILL = 9;

#else

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <cstdlib>

constexpr bool ON_WINDOWS = false;

#endif
