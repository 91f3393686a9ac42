#include "Escape.h"

#include <memory>

#include "FakePlatform.h"

namespace dcffuzz {

namespace {

const std::string kCondition = "### assert condition : ";
const std::string kInfo = "### assert info : ";

} // namespace

void EscapeAssertions() {
    const auto condition = std::make_shared<std::string>();
    dcftest::FakePlatform::Get().AtLog([condition](const dcftest::LogLine& line) {
        const std::string message = line.Message();
        if (message.compare(0, kCondition.size(), kCondition) == 0) {
            *condition = message.substr(kCondition.size());
        } else if (message.compare(0, kInfo.size(), kInfo) == 0) {
            throw Ended{*condition, message.substr(kInfo.size())};
        }
    });
}

} // namespace dcffuzz
