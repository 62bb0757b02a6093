#ifndef TAVSIM_VIEW_PAGEFILES_H
#define TAVSIM_VIEW_PAGEFILES_H

#include <string_view>
#include <vector>

namespace tavsim {

struct PageFile {
  std::string_view name;  // "index.html"
  std::string_view content;
};

// The view's page files, built into the program from view/page.
const std::vector<PageFile>& PageFiles();

}  // namespace tavsim

#endif
