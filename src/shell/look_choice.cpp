#include "shell/look_choice.h"

namespace quillon {

namespace {

constexpr const char* kSection = "Look";
constexpr const char* kKey = "Engraved";

}  // namespace

Look ChosenLook(const Settings& settings)
{
    return settings.Get(kSection, kKey, "0") == "1" ? Look::Engraved : Look::Plain;
}

void ChooseLook(Settings& settings, Look look)
{
    settings.Set(kSection, kKey, look == Look::Engraved ? "1" : "0");
}

}  // namespace quillon
