#pragma once

#include <QUrl>

// Where "Website", the about box's link and the upgrade dialog lead. The web
// address is a build setting; without one they lead to the user guide that
// is installed beside the program.
namespace WebLinks {

[[nodiscard]] QString webAddress();
[[nodiscard]] QUrl website();
[[nodiscard]] QUrl userGuide();
// Empty when no web address is set.
[[nodiscard]] QUrl releases();

} // namespace WebLinks
