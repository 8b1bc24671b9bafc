// Where help, web site and support are: build settings, each with a default. Main thread.
#pragma once

#include <QString>

namespace zorvel {

// The pages that were installed beside the program, or built with it where it runs from its build
// folder, unless the build names another place. A whole URL.
QString helpAddress();

QString websiteAddress();

// A new mail with the subject filled in and an empty body.
QString supportMailAddress();

}  // namespace zorvel
