// All subjects, one function per topic.
#pragma once

#include <vector>

#include "measure.h"

namespace bench {

std::vector<Subject> textSubjects();
std::vector<Subject> int128Subjects();
std::vector<Subject> mathSubjects();
std::vector<Subject> splineSubjects();
std::vector<Subject> queueSubjects();
std::vector<Subject> loadingSubjects();
std::vector<Subject> qtxhostSubjects();

}  // namespace bench
