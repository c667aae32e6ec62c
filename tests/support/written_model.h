// Model files of runs, read back and evaluated by the readers of the companions.
//
// Words and columns are tested by the whole runs.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/verify/poles.h"
#include "support/dense_functions.h"

#include <gtest/gtest.h>

namespace lcp::test {

using companions::ModelFile;

inline Dense denseOf(const companions::Matrix& A) {
  return formed(A.rows, [&](std::size_t i, std::size_t j) { return Wide(A(i, j)); });
}

// Reads a file completely; its poles must be stable and next to their conjugates.
inline ModelFile readModel(const std::string& text) {
  ModelFile file = companions::parseModelFile(text);
  EXPECT_EQ(file.trouble, "") << text;
  for (const companions::Finding& f : companions::checkPoles(file, {}))
    EXPECT_NE(f.verdict, companions::Verdict::BAD) << f.subject << f.where;
  return file;
}

} // namespace lcp::test
