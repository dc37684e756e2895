// What has been measured in several processes, as a table and as data.
#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "measure.h"

namespace bench {

// Of one subject, the nanoseconds of each contender in each process. Contenders are in the order of their
// subject.
struct Row {
  const Subject* subject;
  std::vector<std::string> contenders;
  std::map<std::string, std::vector<double>> nanoseconds;
};

void writeTable(std::ostream& out, const std::vector<Row>& rows);

// Where times mean nothing: a line that names the contenders, whose results agree.
void writeAgreement(std::ostream& out, const Row& row);

// subject, contender, size, threads, nanoseconds, spread: separated by tabs, a line each.
void writeData(std::ostream& out, const std::vector<Row>& rows);

// Puts text between the two lines of a file that say where; false if they are not there.
bool replaceBetweenMarks(const std::string& file, const std::string& text);

// Processor, cores and compiler.
std::string machine();

}  // namespace bench
