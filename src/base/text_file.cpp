#include "base/text_file.h"

#include "base/close_listed.h"
#include "base/console.h"
#include "base/solve_error.h"
#include "base/stop.h"

#include <unistd.h>

namespace lcp {

bool TextFile::open(std::string_view name, EarlyEnd end, Emptied emptied) {
  drop();
  const auto last = name.find_last_not_of(' ');
  file.name = name.substr(0, last == std::string_view::npos ? 0 : last + 1);
  file.end = end;
  file.emptied = emptied;
  if (openListed(file)) return true;
  if (file.descriptor == ISINPUT) stopAtInput(file.name);
  return false;
}

void TextFile::close() { closeListed(file); }

void TextFile::refuseNumber() const {
  console::openStars();
  console::print("Values that are no Finite Numbers in Output File: {}", file.name);
  console::closeStars();
  stop(1);
}

void TextFile::drop() {
  const int descriptor = dropListed(file);
  if (descriptor >= 0) ::close(descriptor);
}

} // namespace lcp
