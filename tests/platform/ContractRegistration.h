// Registers named bodies as tests of a suite that is known only at run time. Each body gets a fresh subject.
#pragma once

#include <gtest/gtest.h>

#include "platform/Failure.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace sonorel::test {

template <typename Subject> struct ContractCase {
  const char *name;
  void (*body)(Subject &);
};

template <typename Subject> class ContractTest final : public testing::Test {
public:
  ContractTest(std::function<std::unique_ptr<Subject>()> make, void (*body)(Subject &))
      : m_make(std::move(make)), m_body(body) {}
  void TestBody() override {
    const auto subject = m_make();
    m_body(*subject);
  }

private:
  std::function<std::unique_ptr<Subject>()> m_make;
  void (*m_body)(Subject &);
};

template <typename Subject>
bool registerCases(const char *suite, const std::function<std::unique_ptr<Subject>()> &make,
                   const std::vector<ContractCase<Subject>> &cases) {
  for (const auto &one : cases) {
    testing::RegisterTest(suite, one.name, nullptr, nullptr, __FILE__, __LINE__, [make, body = one.body] {
      return static_cast<testing::Test *>(new ContractTest<Subject>(make, body));
    });
  }
  return true;
}

// The kind of the failure that a call throws; nullopt when it throws none.
template <typename Call> std::optional<FailureKind> failureOf(Call call) {
  try {
    call();
  } catch (const Failure &e) {
    return e.kind();
  }
  return std::nullopt;
}

} // namespace sonorel::test
