// dialog_place_test.cpp - where the settings dialog stands: in a work area, on the next monitor, after a drag.
#include <gtest/gtest.h>
#include <cmath>
#include <cstdlib>
#include "settings/dialog/dialog_layout.h"

namespace {

bool isWithin(const PixelRect& inner, const PixelRect& outer) {
    return !inner.isEmpty() && intersectRects(inner, outer) == inner;
}

PixelSize sizeOf(const PixelRect& rect) {
    return {rect.width(), rect.height()};
}

struct Monitor {
    PixelRect all;
    PixelRect work;
    unsigned dpi;
};

// Side by side, as with a laptop at 150 % and a screen at 100 %, on either side.
constexpr Monitor kCoarse = {{0, 0, 1920, 1080}, {0, 0, 1920, 1040}, 96};
constexpr Monitor kFineRight = {{1920, 0, 4480, 1440}, {1920, 0, 4480, 1400}, 144};
constexpr Monitor kFineLeft = {{-2560, -200, 0, 1240}, {-2560, -200, 0, 1200}, 144};
constexpr PixelSize kCoarseSize = {940, 660};
constexpr PixelSize kFineSize = {1410, 990};

// The system's part of a drag by the title bar: the window follows the pointer, and once most of it is on the other
// monitor it is offered a rectangle scaled around the pointer.
struct Drag {
    PixelRect window;
    PixelPoint pointer;
    unsigned dpi;

    void moveBy(std::int32_t x, std::int32_t y) {
        pointer = {pointer.x + x, pointer.y + y};
        window = {window.left + x, window.top + y, window.right + x, window.bottom + y};
    }
    bool isMostlyOn(const Monitor& monitor) const {
        const PixelRect part = intersectRects(window, monitor.all);
        return !part.isEmpty() && 2 * part.width() * part.height() > window.width() * window.height();
    }
    PixelRect scaledFor(unsigned other) const {
        const auto scaled = [&](std::int32_t length) {
            return static_cast<std::int32_t>(std::lround(static_cast<double>(length) * other / dpi));
        };
        const std::int32_t left = pointer.x - scaled(pointer.x - window.left);
        const std::int32_t top = pointer.y - scaled(pointer.y - window.top);
        return {left, top, left + scaled(window.width()), top + scaled(window.height())};
    }
    void crossTo(const Monitor& monitor) {
        window = placeForResolution(scaledFor(monitor.dpi), monitor.work, monitor.dpi, true);
        dpi = monitor.dpi;
    }
};

}  // namespace

TEST(DialogPlace, StandsInTheMiddleOfTheWorkArea) {
    EXPECT_EQ(placeDialog({0, 0, 1920, 1040}, 96), (PixelRect{490, 190, 1430, 850}));
    EXPECT_EQ(placeDialog({0, 0, 2560, 1400}, 144), (PixelRect{575, 205, 1985, 1195}));  // 1410 x 990
    EXPECT_EQ(placeDialog({-1920, 0, 0, 1080}, 96), (PixelRect{-1430, 210, -490, 870}));
    EXPECT_EQ(placeDialog({0, 0, 1920, 1040}, 0), placeDialog({0, 0, 1920, 1040}, 96));
}

TEST(DialogPlace, FillsAWorkAreaThatIsTooNarrowOrTooLowButOnlyThatWay) {
    EXPECT_EQ(placeDialog({0, 0, 1366, 728}, 144), (PixelRect{0, 0, 1366, 728}));
    EXPECT_EQ(placeDialog({100, 0, 900, 2000}, 96), (PixelRect{100, 670, 900, 1330}));
    EXPECT_EQ(placeDialog({-3000, 40, -1000, 600}, 96), (PixelRect{-2470, 40, -1530, 600}));
}

TEST(DialogPlace, StandsOnTheMonitorItIsGivenWhereverThatIs) {
    const PixelRect monitors[] = {{1920, 0, 3840, 1040},    // right of the primary one, which begins at 0, 0
                                  {-1920, -200, 0, 840},    // left and a little higher
                                  {300, -1440, 2860, -40},  // above, a bar at its lower edge
                                  {-1080, 900, 0, 2820},    // upright, below
                                  {1920, 300, 2720, 900}};  // a small one
    for (const PixelRect& work : monitors) {
        for (const unsigned dpi : {96U, 120U, 144U, 192U}) {
            const PixelRect place = placeDialog(work, dpi);
            EXPECT_TRUE(isWithin(place, work)) << work.left << ' ' << dpi;
            EXPECT_LE(std::abs((place.left - work.left) - (work.right - place.right)), 1) << work.left << ' ' << dpi;
            EXPECT_LE(std::abs((place.top - work.top) - (work.bottom - place.bottom)), 1) << work.left << ' ' << dpi;
        }
    }
}

TEST(DialogPlace, OnAnotherResolutionItHasItsSizeThereInTheMiddleOfTheWorkArea) {
    for (const Monitor& monitor : {kCoarse, kFineRight, kFineLeft}) {
        // What the system suggests for a window that came over in its old size, hanging over an edge.
        const PixelRect suggested = {monitor.work.right - 300, monitor.work.top + 700, monitor.work.right + 1110,
                                     monitor.work.top + 1690};
        const PixelRect place = placeForResolution(suggested, monitor.work, monitor.dpi, false);
        EXPECT_EQ(place, placeDialog(monitor.work, monitor.dpi));
        EXPECT_EQ(sizeOf(place), monitor.dpi == 96 ? kCoarseSize : kFineSize);
        EXPECT_TRUE(isWithin(place, monitor.work));
    }
}

TEST(DialogPlace, OpenedOnTheOtherMonitorItIsSizedAndSharpThere) {
    const struct {
        Monitor from, to;
    } ways[] = {{kCoarse, kFineRight}, {kCoarse, kFineLeft}, {kFineRight, kCoarse}, {kFineLeft, kCoarse}};
    for (const auto& way : ways) {
        const PixelRect first = placeDialog(way.to.work, way.from.dpi);  // in the size it comes with
        EXPECT_TRUE(isWithin(first, way.to.work));                       // so the system tells of this monitor
        const PixelRect place = placeDialog(way.to.work, way.to.dpi);
        EXPECT_EQ(sizeOf(place), way.to.dpi == 96 ? kCoarseSize : kFineSize);
        EXPECT_TRUE(isWithin(place, way.to.work));
        for (int page = 0; page < kPageCount; page++) {
            const DialogLayout layout = layoutDialog(place.width(), place.height(), way.to.dpi, page, 0);
            EXPECT_EQ(layout.scale, static_cast<float>(way.to.dpi) / 96.0f);  // nothing shrunk or stretched
            EXPECT_EQ(layout.scrollRange, 0);
        }
    }
}

TEST(DialogPlace, DraggedToTheOtherMonitorItStaysUnderThePointerInItsSizeThere) {
    const struct {
        Monitor from, to;
    } ways[] = {{kCoarse, kFineRight}, {kCoarse, kFineLeft}, {kFineRight, kCoarse}, {kFineLeft, kCoarse}};
    for (const auto& way : ways) {
        for (const double grip : {0.05, 0.5, 0.9}) {  // where its title bar is held
            const PixelRect start = placeDialog(way.from.work, way.from.dpi);
            const auto gripX = static_cast<std::int32_t>(grip * start.width());
            Drag drag = {start, {start.left + gripX, start.top + 20}, way.from.dpi};
            const std::int32_t step = way.to.all.left > way.from.all.left ? 7 : -7;
            while (!drag.isMostlyOn(way.to)) drag.moveBy(step, 0);
            drag.crossTo(way.to);
            EXPECT_EQ(sizeOf(drag.window), way.to.dpi == 96 ? kCoarseSize : kFineSize);
            EXPECT_NEAR(drag.pointer.x, drag.window.left + grip * drag.window.width(), 2);
            EXPECT_NEAR(drag.pointer.y, drag.window.top + 20.0 * way.to.dpi / way.from.dpi, 1);
            const PixelRect released = moveInto(drag.window, way.to.work);
            EXPECT_EQ(sizeOf(released), sizeOf(drag.window));
            EXPECT_TRUE(isWithin(released, way.to.work)) << grip << ' ' << released.left << ' ' << released.top;
        }
    }
}

TEST(DialogPlace, HeldOverASmallWorkAreaItIsNoLargerAndStaysAroundThePointer) {
    const PixelRect work = {1920, 0, 3286, 728};
    const PixelRect place = placeForResolution({1900, 10, 3310, 1000}, work, 144, true);
    EXPECT_EQ(place, (PixelRect{1922, 10, 3288, 738}));
    EXPECT_EQ(moveInto(place, work), work);
}

TEST(DialogPlace, IsMovedIntoTheWorkAreaNoFurtherThanNeeded) {
    const PixelRect work = {-2560, -200, 0, 1200};
    EXPECT_EQ(moveInto({-2000, 100, -590, 1090}, work), (PixelRect{-2000, 100, -590, 1090}));
    EXPECT_EQ(moveInto({-700, 400, 710, 1390}, work), (PixelRect{-1410, 210, 0, 1200}));
    EXPECT_EQ(moveInto({-3000, -500, -1590, 490}, work), (PixelRect{-2560, -200, -1150, 790}));
    EXPECT_EQ(moveInto({-3000, 0, 1000, 900}, work), (PixelRect{-2560, 0, 1440, 900}));  // wider: its left is seen
}

TEST(DialogPlace, AnUnknownWorkAreaLeavesItWhereItIsPut) {
    const PixelRect suggested = {2000, 100, 3410, 1090};
    EXPECT_EQ(placeForResolution(suggested, {}, 144, false), suggested);
    EXPECT_EQ(placeForResolution(suggested, {}, 144, true), suggested);
    EXPECT_EQ(moveInto(suggested, {}), suggested);
}
