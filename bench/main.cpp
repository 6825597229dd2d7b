#include "bench/Bench.h"

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace sonorel::bench {

bool report(int row, const std::string &what, double measured, double bound, const std::string &unit) {
  const bool reached = measured <= bound;
  std::printf("row %d  %-62s %8.3f %s (bound %.2f)  %s\n", row, what.c_str(), measured, unit.c_str(), bound,
              reached ? "reached" : "MISSED");
  std::fflush(stdout);
  return reached;
}

} // namespace sonorel::bench

// Without arguments every row, else the rows given.
int main(int argc, char **argv) {
  using namespace sonorel::bench;
  const std::vector<std::pair<std::string, bool (*)()>> rows{
      {"1", transferOf300Tracks},      {"2", bigFileOntoShare},      {"3", smallFilesOntoShare},
      {"4", favouritesOf100000Titles}, {"5", mergeInto100000Titles}, {"6", dropOf20000Paths},
      {"7", mappingOf20000Pictures}};
  const std::vector<std::string> wanted(argv + 1, argv + argc);
  bool reached = true;
  for (const auto &[row, measure] : rows) {
    if (wanted.empty() || std::find(wanted.begin(), wanted.end(), row) != wanted.end()) {
      reached = measure() && reached;
    }
  }
  return reached ? 0 : 1;
}
