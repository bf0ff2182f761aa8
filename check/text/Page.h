#pragma once

#include <string>

namespace kel::check {

enum class PageIcon { None, Information, Warning, Error };

/// What a page of the window says. Texts are UTF-8; the only control characters are line feeds.
struct Page {
    std::string instruction;  // the sentence in large letters
    std::string content;
    PageIcon icon = PageIcon::None;
    std::string expander = {};  // the label that shows the hidden text; empty where there is none
    std::string hidden = {};
};

}  // namespace kel::check
