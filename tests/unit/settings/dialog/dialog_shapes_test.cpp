#include "settings/dialog/dialog_shapes.h"
#include <gtest/gtest.h>
#include "settings/language.h"

namespace {

constexpr std::uint32_t kRing = 0xFFE6FFF0;

ArgbImage drawn(const DialogPicture& picture) {
    ArgbImage image(picture.width, picture.height);
    const DialogLayout layout =
        layoutDialog(picture.width, picture.height, picture.dpi, picture.page, picture.input.scroll);
    drawDialogShapes(viewOf(image), layout, picture);
    return image;
}

DialogPicture pageAt(int page, std::int32_t percent) {
    DialogPicture picture;
    picture.width = kDialogWidth * percent / 100;
    picture.height = kDialogHeight * percent / 100;
    picture.dpi = 96U * static_cast<unsigned>(percent) / 100U;
    picture.page = page;
    picture.view.language = kEnglish;
    return picture;
}

DialogLayout layoutOf(const DialogPicture& picture) {
    return layoutDialog(picture.width, picture.height, picture.dpi, picture.page, 0);
}

bool isAlike(const ArgbImage& a, const ArgbImage& b, const PixelRect& part) {
    for (std::int32_t y = part.top; y < part.bottom; y++) {
        for (std::int32_t x = part.left; x < part.right; x++) {
            if (a.row(y)[x] != b.row(y)[x]) return false;
        }
    }
    return true;
}

}  // namespace

TEST(DialogShapesTest, TheFocusRingIsWholeAroundEveryControl) {
    for (const std::int32_t percent : {100, 150}) {
        for (int page = 0; page < (percent == 100 ? kPageCount : 1); page++) {
            DialogPicture picture = pageAt(page, percent);
            const DialogLayout layout = layoutOf(picture);
            for (const DialogControl& control : layout.controls) {
                if (control.look == ControlLook::kLive || control.look == ControlLook::kFixedKey) continue;
                picture.input.focus = control.id;
                picture.input.isFocusShown = true;
                const ArgbImage ringed = drawn(picture);
                // Two units wide, one unit outside; without its corners.
                const PixelRect& rect = control.rect;
                const std::int32_t corner = layout.px(12);
                for (std::int32_t i = 0; i < layout.px(2); i++) {
                    const std::int32_t out = layout.px(3) - i;
                    for (std::int32_t x = rect.left + corner; x < rect.right - corner; x++) {
                        ASSERT_EQ(ringed.row(rect.top - out)[x], kRing) << control.id << " above, " << x;
                        ASSERT_EQ(ringed.row(rect.bottom + out - 1)[x], kRing) << control.id << " below, " << x;
                    }
                    for (std::int32_t y = rect.top + corner; y < rect.bottom - corner; y++) {
                        ASSERT_EQ(ringed.row(y)[rect.left - out], kRing) << control.id << " left, " << y;
                        ASSERT_EQ(ringed.row(y)[rect.right + out - 1], kRing) << control.id << " right, " << y;
                    }
                }
            }
        }
    }
}

TEST(DialogShapesTest, TheFocusRingOfWhatIsScrolledStaysOnThePage) {
    DialogPicture picture = pageAt(0, 100);
    picture.height = 450;
    picture.input.scroll = 60;
    const ArgbImage plain = drawn(picture);
    picture.input.focus = kFirstLanguage;  // half above the page's edge
    picture.input.isFocusShown = true;
    const ArgbImage ringed = drawn(picture);
    const DialogLayout layout = layoutDialog(picture.width, picture.height, picture.dpi, 0, 60);
    const PixelRect rect = findControl(layout, kFirstLanguage)->rect;
    ASSERT_LT(rect.top, layout.pageView.top);
    ASSERT_GT(rect.bottom, layout.pageView.top);
    EXPECT_TRUE(isAlike(plain, ringed, {0, 0, picture.width, layout.pageView.top}));
    EXPECT_FALSE(isAlike(plain, ringed, {0, layout.pageView.top, picture.width, layout.pageView.bottom}));
}

TEST(DialogShapesTest, AThemeWithoutAKeyDimsItsSelectorAndNoOther) {
    DialogPicture picture = pageAt(2, 100);
    const DialogLayout layout = layoutOf(picture);
    picture.view.settings.theme = 2;
    const ArgbImage airbus = drawn(picture);
    const int keys[] = {0, 2, 5};  // of GENERAL, BOEING and AIRBUS
    for (int theme = 0; theme < 3; theme++) {
        picture.view.settings.theme = theme;
        const ArgbImage image = drawn(picture);
        for (int key = 0; key < 5; key++) {
            const PixelRect rect = findControl(layout, kKeyASelector + key)->rect;
            EXPECT_EQ(isAlike(image, airbus, rect), key < keys[theme]) << theme << ' ' << key;
        }
    }
}

TEST(DialogShapesTest, TheFixedKeyLooksTheSameUnderTheMouse) {
    DialogPicture picture = pageAt(2, 100);
    picture.view.settings.theme = 1;
    const ArgbImage plain = drawn(picture);
    for (const int id : {int{kKeyASelector}, int{kKeyBSelector}}) {
        picture.input.hover = {id, 1};
        const PixelRect rect = findControl(layoutOf(picture), id)->rect;
        EXPECT_EQ(isAlike(drawn(picture), plain, rect), id == kKeyASelector);
    }
}
