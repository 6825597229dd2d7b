// Log lines in the system's own words. Any thread.
#pragma once

#include "platform/Desktop.h"
#include "platform/Failure.h"

namespace sonorel {

// "Exception in ---> <AppController><operation> reason"; className "Parser" and so on for the others.
void logException(Desktop &desktop, const QString &operation, const std::exception &exception,
                  const QString &className = QStringLiteral("AppController"));

} // namespace sonorel
