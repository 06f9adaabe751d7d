/// The figures for people and for programs.
#pragma once

#include <string>

#include "figure.h"

namespace bench {

/// A table on standard output, whose last line says how many lines are reached.
void printFigures(const Figures& figures);
/// The same as JSON. Throws std::runtime_error when the file cannot be written.
void writeJson(const Figures& figures, const std::string& file);
/// 0 when all are reached, else 1.
int exitCodeOf(const Figures& figures);

}  // namespace bench
