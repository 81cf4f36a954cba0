// SPDX-License-Identifier: MIT
// What the examples share: axes, columns of a long stream, recordings, files of pictures.
#include <gtest/gtest.h>

#include <fstream>

#include "axis.h"
#include "columns.h"
#include "painter.h"
#include "picture_file.h"
#include "recording.h"
#include "test_files.h"

namespace {

struct Range {
    std::size_t first, last, count;
    void merge(const Range& other) {
        EXPECT_EQ(last + 1, other.first);
        last = other.last;
        count += other.count;
    }
};

TEST(Columns, KeepEveryItemInOrderAndInBounds) {
    for (const std::size_t items : {1U, 7U, 20U, 21U, 1000U, 12345U}) {
        Columns<Range> columns(10);
        for (std::size_t i = 0; i < items; ++i) columns.add({i, i, 1});
        EXPECT_EQ(columns.count(), items);
        const auto end = static_cast<double>(items);
        const Range all = columns.over(0, end);
        EXPECT_EQ(all.first, 0U);
        EXPECT_EQ(all.count, items);
        const double step = end / 10;
        for (int i = 0; i < 10; ++i) {
            const Range part = columns.over(i * step, (i + 1) * step);
            EXPECT_LE(static_cast<double>(part.first), i * step);
            EXPECT_GE(static_cast<double>(part.last + 1), std::min((i + 1) * step, end));
            EXPECT_LE(static_cast<double>(part.count), 3 * step + 1);
        }
        EXPECT_EQ(columns.over(-5, -4).first, 0U);
        EXPECT_EQ(columns.over(2 * end, 3 * end).last, items - 1);
    }
}

TEST(TimeAxis, HasLabelsThatDifferAtEveryDuration) {
    for (const double seconds : {0.000125, 0.00875, 0.09, 0.1, 0.5, 1.0, 7.1, 59.0, 60.0, 61.0,
                                 600.0, 3599.0, 3600.0, 5000.0, 90000.0, 1e6}) {
        const TimeAxis axis(seconds, 10);
        EXPECT_GE(seconds / axis.step(), 3) << seconds;
        EXPECT_LE(seconds / axis.step(), 14) << seconds;
        for (int i = 0; (i + 1) * axis.step() <= seconds; ++i)
            EXPECT_NE(axis.label(i * axis.step()), axis.label((i + 1) * axis.step())) << seconds;
    }
    EXPECT_EQ(TimeAxis(0.00875, 10).label(0.002), "2");
    EXPECT_STREQ(TimeAxis(0.00875, 10).unit(), "ms");
    EXPECT_EQ(TimeAxis(7.1, 10).label(3), "3");
    EXPECT_EQ(TimeAxis(100, 10).label(70), "1:10");
    EXPECT_EQ(TimeAxis(7300, 10).label(3660), "1:01:00");
}

TEST(Recording, SaysWhatIsWrongWithItsSamples) {
    const TemporaryFolder folder;
    Samples32 samples(100, 0.5F);
    samples[3] = std::nanf("");
    samples[4] = -INFINITY;
    const std::string path = writeWav(folder.file("odd.wav"), 8000, {samples});
    Recording recording(path);
    Recording::Block block;
    EXPECT_TRUE(recording.read(1000, block));
    EXPECT_FALSE(recording.read(1000, block));
    EXPECT_EQ(recording.remarks(),
              std::vector<std::string>{"2 samples are no finite numbers and were taken as 0"});
}

TEST(Recording, HasATitleThatCanBeDrawn) {
    const TemporaryFolder folder;
    const std::string path =
        writeWav(folder.file("a\xFF\xC3\xA4\tb\xE2\x82.wav"), 8000, {Samples32(10, 0.5F)});
    EXPECT_EQ(Recording(path).title(), "a?\xC3\xA4 b??");
}

class PictureFile : public testing::Test {
  protected:
    // The message of the failure; nothing where the picture is written.
    std::string failure(const std::string& path) {
        try {
            checkPictureFile(path);
            Painter painter(300, 200, {1, 1, 1}, {0, 0, 0}, {0, 0, 0});
            painter.text("a title that is much too long for its room", 10, 50, 20, 0, {0, 0, 0},
                         Painter::Weight::plain, 100);
            painter.write(path);
        } catch (const std::runtime_error& e) {
            return e.what();
        }
        return "";
    }
    static std::string start(const std::string& path, std::size_t bytes) {
        std::ifstream file(path, std::ios::binary);
        std::string text(bytes, ' ');
        file.read(text.data(), static_cast<std::streamsize>(bytes));
        return text;
    }
    TemporaryFolder folder;
};

TEST_F(PictureFile, HasTheFormatOfItsExtension) {
    for (const auto& [name, head] : {std::pair{"a.png", "\x89PNG"}, std::pair{"a.PNG", "\x89PNG"},
                                     std::pair{"a.svg", "<?xml"}, std::pair{"a.pdf", "%PDF-"}}) {
        EXPECT_EQ(failure(folder.file(name)), "");
        EXPECT_EQ(start(folder.file(name), std::string(head).size()), head);
    }
    for (const char* name : {"a.jpg", "a", "a.png.bak", ".png"})
        EXPECT_EQ(failure(folder.file(name)),
                  folder.file(name) + ": a picture is written as .png, .svg or .pdf");
}

TEST_F(PictureFile, SaysWhyItCannotBeWritten) {
    std::filesystem::create_directory(folder.file("folder.png"));
    EXPECT_EQ(failure(folder.file("folder.png")),
              folder.file("folder.png") + ": is a folder, not a picture");
    EXPECT_EQ(failure(folder.file("none/a.png")),
              folder.file("none/a.png") + ": there is no folder " + folder.file("none"));
    std::filesystem::create_symlink("/dev/full", folder.file("full.png"));
    EXPECT_EQ(failure(folder.file("full.png")),
              "cannot write " + folder.file("full.png") + ": No space left on device");
}

TEST_F(PictureFile, ShowsTextInTheRoomThatItHas) {
    EXPECT_EQ(failure(folder.file("a.png")), "");
    const Pixels pixels(folder.file("a.png"));
    bool inked = false;
    for (int y = 0; y < 200; ++y) {
        for (int x = 0; x < 300; ++x) {
            if (pixels.brightness(x, y) > 0.9) continue;
            inked = true;
            EXPECT_LT(x, 115);
        }
    }
    EXPECT_TRUE(inked);
}

}  // namespace
