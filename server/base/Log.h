#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace kel::server {

enum class Level { Debug, Info, Warning, Error };

using LogFields = std::initializer_list<std::pair<std::string_view, std::string>>;

/// Lines below this level are not written. Info until it is set; set it before there are threads.
void SetLogLevel(Level level);

/// Writes one line on standard error: time=… level=… event=… and the fields. A value with characters other
/// than letters, digits and ._:/+- is quoted; control characters and characters outside ASCII are escaped: no
/// value of a request can forge a line. Lines of several threads do not mix.
void Log(Level level, std::string_view event, LogFields fields = {});

}  // namespace kel::server
