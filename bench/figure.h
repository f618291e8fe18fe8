// A figure of the table: the library's time for some work next to the machine's own time for the
// same work (or, for a scaling figure, the library's time for a smaller load), and the largest
// ratio of the two that the figure allows.
#pragma once

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace tqv::bench {

struct Round {
  double ours = 0;       // seconds
  double baseline = 0;   // seconds
  double reference = 0;  // seconds; a second baseline shown for comparison, without a goal
};

struct RoundContext {
  std::string library;            // the library file to load
  std::filesystem::path scratch;  // a directory of this round's own, not yet created
};

struct Figure {
  std::string id;        // "P1"
  std::string work;      // what the library does
  std::string baseline;  // what it is measured against
  double goal = 0;       // the largest ratio ours / baseline that holds
  // One round: sets up, measures both sides, checks the library's results, removes its files.
  std::function<Round(const RoundContext &)> run;
  std::string reference = {};  // what Round::reference measures; empty when there is none
};

std::vector<Figure> ConversionFigures();
std::vector<Figure> QueueFigures();
std::vector<Figure> AdminFigures();
std::vector<Figure> ReportFigures();

inline double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

}  // namespace tqv::bench
