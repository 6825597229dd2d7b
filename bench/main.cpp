#include "bench/Bench.h"

#include <cstdio>

namespace sonorel::bench {

bool report(int row, const std::string &what, double measured, double bound, const std::string &unit) {
  const bool reached = measured <= bound;
  std::printf("row %d  %-62s %8.3f %s (bound %.2f)  %s\n", row, what.c_str(), measured, unit.c_str(), bound,
              reached ? "reached" : "MISSED");
  std::fflush(stdout);
  return reached;
}

} // namespace sonorel::bench

int main() {
  using namespace sonorel::bench;
  const bool first = transferOf300Tracks();
  const bool sixth = dropOf20000Paths();
  return first && sixth ? 0 : 1;
}
