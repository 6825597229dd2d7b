#include "mount/Outcome.h"

namespace sonorel {

namespace {

constexpr const char *kAuthentication = "Authentication";
constexpr const char *kPermission = "Permission";

// The system's own words for an error may hold one of the two.
bool misleads(const std::string &text) {
  return text.find(kAuthentication) != std::string::npos || text.find(kPermission) != std::string::npos;
}

} // namespace

std::string printedLine(const Outcome &outcome, const char *program) {
  std::string text = misleads(outcome.text) ? "it was not allowed" : outcome.text;
  if (outcome.status == ExitStatus::RefusedCredentials) {
    text = std::string(kAuthentication) + " error: " + text;
  } else if (outcome.status == ExitStatus::RefusedAccess) {
    text = std::string(kPermission) + " error: " + text;
  }
  return std::string(program) + ": " + text + '\n';
}

} // namespace sonorel
