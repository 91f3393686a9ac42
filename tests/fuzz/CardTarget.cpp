// A whole card: an input describes it byte by byte, and then what a client does with it. The first byte says how it is
// judged: beside the reference of the model test, or, on cards whose order only the file system knows, by what has to
// hold of any card.
#include "CSDCFList.h"
#include "Card.h"
#include "ComparedClient.h"
#include "Escape.h"
#include "FakePlatform.h"
#include "Sides.h"
#include "Target.h"
#include "WildClient.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace dcffuzz;
    SetUpOnce();
    static const dcftest::Card place;
    dcftest::FakePlatform::Get().Reset();
    CSDCFList::m_PhotoInfoCollector = nullptr;
    DirPathMapper::getInstance()->clear();
    (void)dcftest::TakeCollected();
    EscapeAssertions();
    dcftest::Dice dice(data, size);
    if (dice.Pick(0, 3) != 3) {
        RunComparedClient(dice, place.Root());
    } else {
        RunWildClient(dice, place.Root());
    }
    return 0;
}
