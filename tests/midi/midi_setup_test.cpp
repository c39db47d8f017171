#include "midi/midi_setup.h"

#include "support/fakes.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

class MidiSetupTest : public testing::Test {
protected:
    PageSettings page;
    FakeSettings settings;
    FakeMidiPorts ports;
    MidiSetup form{page, settings, ports};
};

TEST_F(MidiSetupTest, TwoDevicesMakeThreeLinesAndMinus1SelectsTheFirst)
{
    ports.Names = {"Synth", "Cable"};
    form.Show();
    EXPECT_EQ(form.ComboMidiOut, (std::vector<std::string>{"Default", "Synth", "Cable"}));
    EXPECT_EQ(form.ComboMidiOutIndex, 0);
}

TEST_F(MidiSetupTest, SelectsTheDeviceThatIsKept)
{
    ports.Names = {"Synth", "Cable"};
    page.MidiDevice = "1";
    form.Show();
    EXPECT_EQ(form.ComboMidiOutIndex, 2);
}

TEST_F(MidiSetupTest, ADeviceThatIsGoneGivesWayToTheDefaultOne)
{
    for (const char* device : {"0", "7", "-2"}) {
        page.MidiDevice = device;
        form.Show();
        EXPECT_EQ(form.ComboMidiOutIndex, 0) << device;
        form.cmdExit();
    }
}

TEST_F(MidiSetupTest, ShowingTheOpenFormChangesNothing)
{
    ports.Names = {"Synth", "Cable"};
    form.Show();
    form.ComboMidiOutClick(2);
    form.Show();
    EXPECT_EQ(form.ComboMidiOutIndex, 2);
}

TEST_F(MidiSetupTest, ExitHidesTheFormAndKeepsTheChoice)
{
    ports.Names = {"Synth", "Cable"};
    form.Show();
    form.ComboMidiOutClick(2);
    form.cmdExit();
    EXPECT_FALSE(form.Visible);
    EXPECT_EQ(page.MidiDevice, "1");
    EXPECT_EQ(settings.Written, std::vector<std::string>{"Prefs/MIDIDEVICE=1"});
    form.Show();
    EXPECT_EQ(form.ComboMidiOut.size(), 3u);
    EXPECT_EQ(form.ComboMidiOutIndex, 2);
}

}  // namespace
}  // namespace quillon
