#include "app/export_command.h"

#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace quillon {
namespace {

using Arguments = std::vector<std::string>;

/// Why the arguments are bad usage.
std::string Refusal(const Arguments& arguments)
{
    try {
        ParseExportCommand(arguments);
    } catch (const std::invalid_argument& usage) {
        return usage.what();
    }
    return "none";
}

TEST(ExportCommandTest, TheFormIsTheOutputsExtension)
{
    for (const auto& [output, format] : {
             std::pair{"a.pdf",     "pdf"     },
             {"a.svg",     "svg"     },
             {"a.png",     "png"     },
             {"a.mid",     "mid"     },
             {"a.wav",     "wav"     },
             {"a.ogg",     "ogg"     },
             {"a.mp3",     "mp3"     },
             {"a.abc",     "abc"     },
             {"a.xml",     "musicxml"},
             {"a.mxl",     "mxl"     },
             {"a.txt",     "txt"     },
             {"a.gui",     "tune"    },
             {"a.b.bjo",   "tune"    },
             {"d.x/a.bss", "tune"    }
    }) {
        const ExportCommand command = ParseExportCommand({"tune.gui", "-o", output});
        EXPECT_EQ(command.Format, format);
        EXPECT_EQ(command.Output, output);
        EXPECT_EQ(command.Tunes, Arguments{"tune.gui"});
    }
}

TEST(ExportCommandTest, AnOutputThatTellsNoFormNeedsFormat)
{
    for (const char* output : {"a.doc", "a", "-", "folder.pdf/a", "a.PDF", "a.page-log", "a.tune"})
        EXPECT_NE(Refusal({"t.gui", "-o", output}).find("--format"), std::string::npos) << output;
    for (const char* format : {"pdf", "svg", "png", "mid", "wav", "ogg", "mp3", "tune",
                               "measure-log", "page-log", "print-log"})
        EXPECT_EQ(ParseExportCommand({"t.gui", "-o", "-", "--format", format}).Format, format);
    EXPECT_EQ(ParseExportCommand({"t.gui", "-o", "a.pdf", "--format", "svg"}).Format, "svg");
    EXPECT_EQ(Refusal({"t.gui", "-o", "-", "--format", "gui"}), "unknown format gui");
}

TEST(ExportCommandTest, FromAndPositionAreForOtherProgramsTunes)
{
    const ExportCommand command =
        ParseExportCommand({"a.txt", "--from", "abc", "--position", "5-9", "-o", "a.gui"});
    EXPECT_EQ(command.From, "abc");
    EXPECT_EQ(command.LowestFret, 5);
    EXPECT_EQ(command.HighestFret, 9);
    EXPECT_EQ(Refusal({"a", "--from", "gui", "-o", "a.gui"}), "--from cannot be gui");
    for (const char* position : {"5", "5-7", "-1-9", "9-5", "20-25"})
        EXPECT_NE(Refusal({"a.abc", "--position", position, "-o", "a.gui"}), "none") << position;
}

TEST(ExportCommandTest, EveryOptionSetsItsOwnValue)
{
    const ExportOptions o =
        ParseExportCommand(
            {"--strings",     "5",      "--tempo",       "99.5", "--tuning",       "2",
             "--tuning-file", "my.tun", "--capo",        "3",    "--instrument",   "24",
             "--body-font",   "Serif",  "--body-size",   "8",    "--title-font",   "Mono",
             "--title-size",  "14.5",   "--left",        "0.5",  "--right",        "1.25",
             "--top",         "-0.25",  "--stave-space", "0.8",  "--center-title", "no",
             "t.gui",         "-o",     "t.pdf"})
            .Options;
    EXPECT_EQ(o.Strings, 5);
    EXPECT_EQ(o.Tempo, 99.5);
    EXPECT_EQ(o.Tuning, 2);
    EXPECT_EQ(o.TuningFile, "my.tun");
    EXPECT_EQ(o.Capo, 3);
    EXPECT_EQ(o.Instrument, 24);
    EXPECT_EQ(o.BodyFont, "Serif");
    EXPECT_EQ(o.BodySize, 8.0F);
    EXPECT_EQ(o.TitleFont, "Mono");
    EXPECT_EQ(o.TitleSize, 14.5F);
    EXPECT_EQ(o.Left, .5F);
    EXPECT_EQ(o.Right, 1.25F);
    EXPECT_EQ(o.Top, -.25F);
    EXPECT_EQ(o.StaveSpace, .8F);
    EXPECT_EQ(o.CenterTitle, false);
}

TEST(ExportCommandTest, WithoutOptionsNothingIsSet)
{
    const ExportOptions o = ParseExportCommand({"t.gui", "-o", "t.pdf"}).Options;
    EXPECT_FALSE(o.Strings || o.Tempo || o.Tuning || o.Capo || o.Instrument || o.BodyFont ||
                 o.BodySize || o.TitleFont || o.TitleSize || o.Left || o.Right || o.Top ||
                 o.StaveSpace || o.CenterTitle);
    EXPECT_EQ(o.TuningFile, "");
}

TEST(ExportCommandTest, PagesAreEngravedUnlessTheyAreToBePlain)
{
    EXPECT_EQ(ParseExportCommand({"t.gui", "-o", "t.pdf"}).As, Look::Engraved);
    EXPECT_EQ(ParseExportCommand({"t.gui", "-o", "t.pdf", "--look", "engraved"}).As,
              Look::Engraved);
    EXPECT_EQ(ParseExportCommand({"t.gui", "-o", "t.pdf", "--look=plain"}).As, Look::Plain);
}

TEST(ExportCommandTest, PagesHaveAPaperADensityAndAPart)
{
    const ExportCommand plain = ParseExportCommand({"t.gui", "-o", "t.pdf"});
    EXPECT_FALSE(plain.Paper || plain.NoEmptyPage || plain.Crop || plain.Measures);
    const ExportCommand pdf = ParseExportCommand(
        {"t.gui", "-o", "t.pdf", "--paper", "a4", "--no-empty-page", "--measures", "3-12"});
    EXPECT_EQ(pdf.Paper.value().Height, kA4.Height);
    EXPECT_TRUE(pdf.NoEmptyPage);
    EXPECT_EQ(pdf.Measures.value().First, 3);
    EXPECT_EQ(pdf.Measures.value().Last, 12);
    const ExportCommand png =
        ParseExportCommand({"t.gui", "-o", "t.png", "--dpi", "150", "--crop", "--measures=7"});
    EXPECT_EQ(png.Dpi, 150);
    EXPECT_TRUE(png.Crop);
    EXPECT_EQ(png.Measures.value().First, 7);
    EXPECT_EQ(png.Measures.value().Last, 7);
    EXPECT_EQ(ParseExportCommand({"t.gui", "-o", "t.png"}).Dpi, 300);
    EXPECT_TRUE(ParseExportCommand({"t.gui", "-o", "t.svg", "--text"}).KeepText);
}

TEST(ExportCommandTest, SoundCanBeForPractice)
{
    EXPECT_EQ(ParseExportCommand({"t.gui", "-o", "t.mid"}).Practice(), PracticeChoices{});
    for (const char* output : {"t.mid", "t.wav", "t.ogg", "t.mp3"}) {
        const ExportCommand command =
            ParseExportCommand({"t.gui", "-o", output, "--measures", "3-4", "--speed=60", "--loop",
                                "8", "--count-in", "--click"});
        EXPECT_EQ(command.Practice(),
                  (PracticeChoices{.Speed = 60, .Turns = 8, .CountIn = true, .Click = true}));
        EXPECT_EQ(command.Measures.value().Last, 4);
    }
}

TEST(ExportCommandTest, AValueMayFollowAnEqualsSignAndATuneTheDoubleDash)
{
    const ExportCommand command =
        ParseExportCommand({"--output=midi", "--format=mid", "--tempo=120", "--", "-o", "--tempo"});
    EXPECT_EQ(command.Output, "midi");
    EXPECT_EQ(command.Format, "mid");
    EXPECT_EQ(command.Options.Tempo, 120);
    EXPECT_EQ(command.Tunes, (Arguments{"-o", "--tempo"}));
}

TEST(ExportCommandTest, BadUsageIsRefusedWithItsReason)
{
    const std::pair<Arguments, const char*> rows[] = {
        {{},                                                  "no tune given"                                    },
        {{"-o", "a.pdf"},                                     "no tune given"                                    },
        {{"t.gui"},                                           "no output given; name one with -o"                },
        {{"t.gui", "-o"},                                     "-o needs a value"                                 },
        {{"t.gui", "-o", "a.pdf", "--tempo"},                 "--tempo needs a value"                            },
        {{"t.gui", "-o", "a.pdf", "--loud", "1"},             "unknown option --loud"                            },
        {{"t.gui", "-o", "a.pdf", "--loud"},                  "unknown option --loud"                            },
        {{"t.gui", "-o", "a.pdf", "-x", "1"},                 "unknown option -x"                                },
        {{"t.gui", "-o", "a.pdf", "--strings", "7"},          "--strings must be 4, 5 or 6"                      },
        {{"t.gui", "-o", "a.pdf", "--strings", "six"},        "--strings needs a whole number, not 'six'"        },
        {{"t.gui", "-o", "a.pdf", "--capo", "1.5"},           "--capo needs a whole number, not '1.5'"           },
        {{"t.gui", "-o", "a.pdf", "--left", "1in"},           "--left needs a number, not '1in'"                 },
        {{"t.gui", "-o", "a.pdf", "--left", ""},              "--left needs a number, not ''"                    },
        {{"t.gui", "-o", "a.pdf", "--top", "nan"},            "--top needs a number, not 'nan'"                  },
        {{"t.gui", "-o", "a.pdf", "--center-title", "maybe"}, "--center-title must be yes or no"                 },
        {{"a.gui", "b.gui", "-o", "-", "--format", "mid"},
         "several tunes go into a folder, not to standard output"                                                },
        {{"a.gui", "b.gui", "-o", "out.mid"},
         "several tunes go into a folder, but 'out.mid' looks like a file"                                       },
        {{"a.gui", "b.gui", "-o", "o.bss", "--format=mid"},
         "several tunes go into a folder, but 'o.bss' looks like a file"                                         },
        {{"t.gui", "-o", "a.pdf", "--look", "fine"},          "--look must be engraved or plain"                 },
        {{"t.gui", "-o", "a.pdf", "--paper", "a5"},           "--paper must be letter or a4"                     },
        {{"t.gui", "-o", "a.png", "--dpi", "20"},             "--dpi must be 24 to 1200"                         },
        {{"t.gui", "-o", "a.svg", "--measures", "4-2"},
         "--measures needs two measures, the lower one first, not '4-2'"                                         },
        {{"t.gui", "-o", "a.svg", "--measures", "4-"},        "--measures needs a whole number, not ''"          },
        {{"t.gui", "-o", "a.svg", "--dpi", "96"},             "--dpi is only for png"                            },
        {{"t.gui", "-o", "a.png", "--paper", "a4"},           "--paper is only for pdf"                          },
        {{"t.gui", "-o", "a.mid", "--crop"},                  "--crop is only for pdf, svg and png"              },
        {{"t.gui", "-o", "a.mid", "--speed", "19"},           "--speed must be 20 to 300"                        },
        {{"t.gui", "-o", "a.mid", "--loop", "1000"},          "--loop must be 1 to 999"                          },
        {{"t.gui", "-o", "a.pdf", "--click"},                 "--click is only for mid, wav, ogg and mp3"        },
        {{"t.gui", "-o", "a.abc", "--measures", "1-2"},
         "--measures is only for pdf, svg, png, mid, wav, ogg and mp3"                                           },
        {{"t.gui", "--check", "--order"},                     "--check and --order cannot be combined"           },
        {{"t.gui", "--check", "-o", "a.pdf"},                 "--check and --order write to standard output only"},
    };
    for (const auto& [arguments, reason] : rows)
        EXPECT_EQ(Refusal(arguments), reason);
}

TEST(ExportCommandTest, AFolderMayBeNamedLikeAFile)
{
    const TemporaryDirectory directory;
    std::filesystem::create_directory("out.mid");
    EXPECT_EQ(ParseExportCommand({"a.gui", "b.gui", "-o", "out.mid"}).Format, "mid");
    EXPECT_EQ(Refusal({"a.gui", "b.gui", "-o", "new.mid/", "--format", "mid"}), "none");
}

TEST(ExportCommandTest, HelpCheckAndOrderNeedNoOutput)
{
    EXPECT_TRUE(ParseExportCommand({"--help"}).Help);
    EXPECT_TRUE(ParseExportCommand({"-h"}).Help);
    EXPECT_TRUE(ParseExportCommand({"--check", "a.gui", "b.gui"}).Check);
    EXPECT_TRUE(ParseExportCommand({"a.gui", "--order"}).Order);
}

}  // namespace
}  // namespace quillon
