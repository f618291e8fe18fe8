// tqvbench: runs every figure in rounds, each round in sandboxes of its own, and prints one table of
// medians: the library's time, the baseline's, their ratio and whether it holds the goal. Exits 1
// when a figure's work went wrong (its results are checked every round), 0 otherwise: a goal
// missed is a finding to read, not a failure of the run.
#include <stdlib.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "bench_checks.h"
#include "figure.h"
#include "tqv/host/host_library.h"

namespace {

using namespace tqv::bench;

std::vector<Figure> AllFigures() {
  std::vector<Figure> figures;
  for (auto list : {ConversionFigures, QueueFigures, AdminFigures, ReportFigures})
    for (Figure &figure : list())
      figures.push_back(std::move(figure));
  std::sort(figures.begin(), figures.end(), [](const Figure &a, const Figure &b) { return a.id < b.id; });
  return figures;
}

std::string Duration(double seconds) {
  char text[32];
  if (seconds >= 1)
    std::snprintf(text, sizeof text, "%.3f s", seconds);
  else
    std::snprintf(text, sizeof text, "%.2f ms", seconds * 1000);
  return text;
}

}  // namespace

int main(int argc, char **argv) {
  CLI::App app{
      "Times the library through its exported functions, as a fax service drives it, against the machine's "
      "own time for the same work, and prints one table of medians. Every round checks the jobs and reports "
      "it made."};
  int rounds = 5;
  std::vector<std::string> only;
  std::string library = tqv::tool::DefaultLibraryPath();
  // In memory by default, so the figures show the library's own cost and not the disk's: writeback
  // and, on ext4 without a journal, the slow creation of files after mass deletions would swamp
  // it. --dir measures on a disk of choice.
  std::string scratch = fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path().string();
  app.add_option("--rounds", rounds, "Rounds per figure; the medians are printed.")
      ->check(CLI::Range(1, 1000));
  app.add_option("--only", only, "Figures to run (P1 ... P7); all by default.")->delimiter(',');
  app.add_option("--library", library, "The library to load.")->check(CLI::ExistingFile);
  app.add_option("--dir", scratch,
                 "Where the sandboxes are made (a fresh directory inside); /dev/shm by default.")
      ->check(CLI::ExistingDirectory);
  CLI11_PARSE(app, argc, argv);

  if (library.empty() || !fs::is_regular_file(library)) {
    std::fprintf(stderr, "tqvbench: no library at '%s' (build it, or name it with --library)\n",
                 library.c_str());
    return 2;
  }
  std::vector<Figure> figures = AllFigures();
  const std::set<std::string> wanted(only.begin(), only.end());
  for (const std::string &id : wanted) {
    if (std::none_of(figures.begin(), figures.end(), [&](const Figure &f) { return f.id == id; })) {
      std::fprintf(stderr, "tqvbench: no figure '%s' (P1 ... P7)\n", id.c_str());
      return 2;
    }
  }
  std::erase_if(figures, [&](const Figure &f) { return !wanted.empty() && !wanted.count(f.id); });

  std::string root = (fs::path(scratch) / "tqvbench.XXXXXX").string();
  Check(mkdtemp(root.data()) != nullptr, "cannot make a directory in " + scratch);

  std::printf("%-4s %-72s %11s %11s %7s %6s  %s\n", "", "work (baseline)", "ours", "baseline", "ratio",
              "goal", "holds");
  bool allHold = true;
  for (const Figure &figure : figures) {
    std::vector<double> ours, baseline, reference;
    for (int round = 0; round < rounds; ++round) {
      std::fprintf(stderr, "\r%s round %d of %d ...", figure.id.c_str(), round + 1, rounds);
      const Round result = figure.run({library, fs::path(root) / (figure.id + "-" + std::to_string(round))});
      ours.push_back(result.ours);
      baseline.push_back(result.baseline);
      reference.push_back(result.reference);
    }
    std::fprintf(stderr, "\r%40s\r", "");
    const double ratio = Median(ours) / Median(baseline);
    const bool holds = ratio <= figure.goal;
    allHold = allHold && holds;
    std::printf("%-4s %-72s %11s %11s %7.2f %6.2g  %s\n", figure.id.c_str(), figure.work.c_str(),
                Duration(Median(ours)).c_str(), Duration(Median(baseline)).c_str(), ratio, figure.goal,
                holds ? "yes" : "NO");
    std::printf("%-4s   (%s)\n", "", figure.baseline.c_str());
    if (!figure.reference.empty())
      std::printf("%-4s   for reference: %s, %s, ratio %.2f\n", "", figure.reference.c_str(),
                  Duration(Median(reference)).c_str(), Median(ours) / Median(reference));
    std::fflush(stdout);
  }
  std::printf("medians of %d rounds; ratio = ours / baseline; %s\n", rounds,
              allHold ? "every goal holds" : "a goal is missed");
  std::error_code ignored;
  fs::remove_all(root, ignored);
  return 0;
}
