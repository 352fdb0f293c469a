#pragma once

#include <QString>

namespace Korvi::WebPage {

// Where a page finds the libraries and itself: a scheme that only the renderer knows and serves from the bundle.
inline constexpr char scheme[] = "korvi-web";
inline constexpr char origin[] = "korvi-web://bundle";

// Makes a text safe inside '...' of a script that stands in a page: it ends neither the string, the line nor the script.
QString escapedForScript(QString text);

// A whole page. It may load from the bundle, run this one inline script and nothing else; the policy names the script
// by its hash, so nothing that comes to stand in the page can run.
// `libraries` are the elements that load stylesheets and scripts.
QString assemble(const QString& libraries, const QString& style, const QString& body, const QString& script);

}
