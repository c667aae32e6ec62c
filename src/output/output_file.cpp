#include "output/output_file.h"

#include "base/console.h"

namespace lcp {

void sayCannotOpen(const FileName& name) {
  console::line();
  console::line(" ****** corvo.exe: ERROR *****");
  console::print(CANNOTOPEN, name.text());
}

bool openOutput(TextFile& file, const FileName& name, EarlyEnd end) {
  if (file.open(name.whole(), end)) return true;
  sayCannotOpen(name);
  return false;
}

} // namespace lcp
