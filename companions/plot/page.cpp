#include "companions/plot/page.h"

namespace lcp::companions {

namespace {

void put(std::string& page, std::string_view place, std::string_view text) {
  page.replace(page.find(place), place.size(), text);
}

std::string escaped(const std::string& json) {
  std::string text;
  for (const char c : json) {
    if (c == '<') text += "\\u003c";
    if (c != '<') text.push_back(c);
  }
  return text;
}

} // namespace

// The data are inserted last, so that no name in them is taken for a placeholder.
std::string pageOf(const Json& data) {
  std::string page(PAGEFRAME);
  put(page, "/*CHARTSTYLE*/", CHARTSTYLE);
  put(page, "/*PAGESTYLE*/", PAGESTYLE);
  put(page, "/*CHARTSCRIPT*/", CHARTSCRIPT);
  put(page, "/*PAGESCRIPT*/", PAGESCRIPT);
  put(page, "/*DATA*/",
      escaped(data.dump(-1, ' ', false, nlohmann::detail::error_handler_t::replace)));
  return page;
}

} // namespace lcp::companions
