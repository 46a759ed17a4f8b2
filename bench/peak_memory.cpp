// peak_memory PROGRAM [ARGUMENT ...]: runs the program with its output thrown away and prints its
// peak resident memory in KiB, as the operating system accounts it, and its wall time in seconds.

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fputs("usage: peak_memory PROGRAM [ARGUMENT ...]\n", stderr);
    return 1;
  }
  const auto start = std::chrono::steady_clock::now();
  const pid_t child = fork();
  if (child == 0) {
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    execv(argv[1], argv + 1);
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (child < 0 || wait4(child, &status, 0, &usage) != child || status != 0) {
    std::fprintf(stderr, "peak_memory: %s failed\n", argv[1]);
    return 2;
  }
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
  std::printf("%ld %.3f\n", usage.ru_maxrss, wall.count());
  return 0;
}
