// paint_memory_test.cpp - memory runs out while a window is drawn: the next drawing is whole.
#include <cmath>
#include "panel/panel_draw.h"
#include "settings/dialog/dialog_shapes.h"
#include "settings/language.h"
#include "tests/memory/scarce_memory.h"
#include "tests/unit/bridge/rig.h"
#include "tests/unit/messages/message_rig.h"

namespace {

template <class Body>
void tryOnce(const Body& body) {
    try {
        body();
    } catch (const std::bad_alloc&) {
    }
}

// A panel that is on the screen; a swap is pressed and a word has come.
class Panel {
  public:
    Panel() {
        inputs_.settings.theme = kBoeingTheme;
        inputs_.settings.panel_scale = 40;
        inputs_.sim = connectedState();
        inputs_.status = {"CONNECTED", "a channel line that is longer than a short string"};
        draw();
        inputs_.sim.radios[0].active = 118005;
        inputs_.commands = {{.com = 1, .slot = kSlotSwap, .id = "4242-1000000-long-enough", .writtenAt = 1}};
        inputs_.status.statusText = "Writing; awaiting simulator readback";
        model_.pressed_element = kSwapKey;
        model_.press_level = 0.5f;
    }
    // As the window does.
    void draw() {
        const PanelPlacement placement = placePanel(inputs_.settings, {0, 0, 1920, 1080}, 96);
        const PanelPicture picture = makePicture(inputs_, model_, placement);
        if (image_.width != picture.width) image_ = ArgbImage(picture.width, picture.height);
        PanelLayers& layers = layers_.layersFor(picture.theme, picture.scale, picture.width, picture.height);
        std::vector<PixelRect> areas = {image_.bounds()};
        if (drawn_) areas = changedAreas(layers, *drawn_, picture);
        drawn_.reset();
        for (const PixelRect& area : areas) drawPanel(viewOf(image_), layers, picture, texts_, area);
        drawn_ = picture;
    }
    const ArgbImage& image() const { return image_; }

  private:
    ThemeArt art_;
    LayerCache layers_{art_};
    PanelInputs inputs_;
    PanelModel model_;
    StatusImages texts_;
    ArgbImage image_;
    std::optional<PanelPicture> drawn_;
};

}  // namespace

TEST(ScarceMemoryForAPicture, ThePanelsNextDrawingIsWhole) {
    Panel reference;
    reference.draw();
    forEveryAllocation<Panel>([](Panel& panel) { tryOnce([&] { panel.draw(); }); },
                              [&](Panel& panel, bool) {
                                  panel.draw();
                                  EXPECT_TRUE(panel.image().pixels == reference.image().pixels);
                              });
}

namespace {

class PlentifulScreen : public FakeMessageScreen {
  public:
    using FakeMessageScreen::FakeMessageScreen;
    void place() override {
        const PlentyOfMemory plenty;
        FakeMessageScreen::place();
    }
    void appear() override {
        const PlentyOfMemory plenty;
        FakeMessageScreen::appear();
    }
    void paint(const std::vector<PageItem>& items) override {
        const PlentyOfMemory plenty;
        FakeMessageScreen::paint(items);
    }
    void invalidate() override {
        const PlentyOfMemory plenty;
        FakeMessageScreen::invalidate();
    }
    void invalidate(const UnitRect& part) override {
        const PlentyOfMemory plenty;
        FakeMessageScreen::invalidate(part);
    }
    void update() override {
        const PlentyOfMemory plenty;
        FakeMessageScreen::update();
    }
};

// A visible page, for which a message has come.
struct Page {
    Page() {
        add("an earlier message");
        model.show();
        add("PDC 1423\nCLEARED TO ZSPD VIA ELKUR W40 YQO AND THEN A LONG WAY ON, SQUAWK "
            "4312\n\xE5\x8C\x97\xE4\xBA\xAC");
    }
    void add(const char* text) { addMessage(store, "Beijing Control and Delivery", text, kChannelMessage, 7, 1); }

    ManualClock clock;
    MemoryFiles files;
    SettingsStore settings{files};
    MessageStore store;
    std::atomic<std::int32_t> languageIndex{kEnglish};
    std::atomic<bool> isVisible{false};
    PlentifulScreen screen{isVisible};
    MessageModel model{{clock, settings, store, languageIndex, isVisible,
                        [](double) {
                            return TimeOfDay{12, 34, 56};
                        }},
                       screen};
};

}  // namespace

TEST(ScarceMemoryForAPicture, TheMessageWindowsNextTickShowsTheMessage) {
    Page reference;
    reference.model.refresh();
    ASSERT_FALSE(reference.screen.picture.empty());
    forEveryAllocation<Page>([](Page& page) { tryOnce([&] { page.model.refresh(); }); },
                             [&](Page& page, bool) {
                                 page.model.refresh();
                                 EXPECT_TRUE(page.screen.picture == reference.screen.picture);
                                 EXPECT_TRUE(page.screen.isShown);
                             });
}

TEST(ScarceMemoryForAPicture, TheMessageWindowOpensWithoutMemoryAndShowsItsPageAtTheNextTick) {
    Page reference;
    reference.model.hide();
    reference.model.show();
    forEveryAllocation<Page>(
        [](Page& page) {
            {
                const PlentyOfMemory plenty;
                page.model.hide();
            }
            tryOnce([&] { page.model.show(); });
        },
        [&](Page& page, bool) {
            EXPECT_TRUE(page.isVisible);
            page.model.refresh();
            EXPECT_TRUE(page.screen.picture == reference.screen.picture);
        });
}

namespace {

struct Dialog {
    Dialog() : image(kDialogWidth, kDialogHeight) {}
    void draw() {
        DialogPicture picture;
        picture.width = kDialogWidth;
        picture.height = kDialogHeight;
        picture.view.language = kEnglish;
        LiveRadio radio{.isConnected = true, .isKnown = true, .activeKHz = 122800, .volume = 0.5f, .reason = {}};
        LiveMemory memory;
        picture.view.live = liveStatusOf(radio, 1, memory, 1000);
        const DialogLayout layout = layoutDialog(picture.width, picture.height, picture.dpi, 0, 0);
        drawDialogShapes(viewOf(image), layout, picture);
        texts = dialogTexts(layout, picture.view);
    }
    ArgbImage image;
    std::vector<DialogText> texts;
};

}  // namespace

TEST(ScarceMemoryForAPicture, TheDialogsNextDrawingIsWhole) {
    Dialog reference;
    reference.draw();
    forEveryAllocation<Dialog>([](Dialog& dialog) { tryOnce([&] { dialog.draw(); }); },
                               [&](Dialog& dialog, bool) {
                                   dialog.draw();
                                   EXPECT_TRUE(dialog.image.pixels == reference.image.pixels);
                                   EXPECT_TRUE(dialog.texts == reference.texts);
                               });
}
