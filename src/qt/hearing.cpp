#include "qt/hearing.h"

#include "store/fault.h"

#include <chrono>
#include <exception>
#include <utility>

namespace quillon {

namespace {

using namespace std::chrono_literals;

constexpr auto kPolling = 20ms;  // the band may be this late
constexpr auto kDyingAway = 1s;  // of the last notes, in their room
constexpr auto kForgetting = 15s;

/// In terms of the tune, if there are any.
std::string Words(const std::exception& failure)
{
    const auto* fault = dynamic_cast<const Fault*>(&failure);
    return fault && !fault->Explanation().empty() ? fault->Explanation() : failure.what();
}

}  // namespace

Hearing::Hearing(MainWin& mainWin, Runner& theRunner, PageArea& pageArea, Player& thePlayer)
    : win(mainWin), runner(theRunner), area(pageArea), player(thePlayer)
{
    polling.setInterval(kPolling);
    polling.setTimerType(Qt::PreciseTimer);
    connect(&polling, &QTimer::timeout, this, &Hearing::Poll);
    closing.setInterval(kDyingAway);
    closing.setSingleShot(true);
    connect(&closing, &QTimer::timeout, this, &Hearing::ClosePlayer);
    forgetting.setInterval(kForgetting);
    forgetting.setSingleShot(true);
    connect(&forgetting, &QTimer::timeout, this, [this] {
        trouble.clear();
        emit Changed();
    });
    connect(&area, &PageArea::TakenBack, this, [this] { leads = false; });
    player.OnEnd = [this] { Stop(); };
    player.OnFailure = [this] {
        Fail("The sound device has gone.");
        ClosePlayer();
    };
}

Hearing::~Hearing()
{
    player.OnEnd = nullptr;
    player.OnFailure = nullptr;
    player.Close();
}

void Hearing::PlayOrStop()
{
    if (IsOn()) {
        Stop();
        return;
    }
    const int head = win.form.MeasHead;
    const bool hasMeasure = head >= 1 && head <= win.tune.LastNote && win.tune[head].IsHead();
    if (!hasMeasure) {
        Fail("There is nothing to play here yet.");
        return;
    }
    PartToPlay part;
    part.From = win.tune[head].Measure;
    Play(part);
}

void Hearing::Play(const PartToPlay& part)
{
    Stop();
    StopForm();
    if (win.form.InputMode == InputMode::Insert) {
        Fail("A measure is being inserted.");
        return;
    }
    trouble.clear();
    Sound sound;
    try {
        sound = win.frmBldMidi.SoundNow();
    } catch (const std::exception& failure) {
        Fail(Words(failure));
        return;
    }
    buildingLines = win.PlacesOf(win.tune);
    building = std::async(std::launch::async, Build, win.tune, sound, part);
    SetState(State::Building);
    polling.start();
}

Hearing::Built Hearing::Build(Tune tune, const Sound& sound, const PartToPlay& part)
{
    try {
        return {BuildPart(tune, sound, part), {}};
    } catch (const std::exception& failure) {
        return {{}, Words(failure)};
    }
}

void Hearing::PlayBuilt(Built built)
{
    if (!built.Trouble.empty()) {
        Fail(built.Trouble);
        return;
    }
    if (!OpenPlayer()) {
        Fail(player.Trouble());
        return;
    }
    try {
        player.LoadBytes(built.Track.Midi);
    } catch (const std::exception& failure) {
        Fail(Words(failure));
        return;
    }
    player.Play(false);
    Follow(player, std::move(built.Track.Positions), false, std::move(buildingLines));
    SetState(State::Playing);
}

bool Hearing::OpenPlayer()
{
    closing.stop();
    return open || (open = player.Init());
}

void Hearing::ClosePlayer()
{
    closing.stop();
    player.Close();
    open = false;
}

/// A part that is still being built is waited for: it takes a moment at most.
void Hearing::Stop()
{
    if (!IsOn())
        return;
    building = {};
    if (state == State::Playing) {
        player.Stop();
        EndFollowing();
        closing.start();
    }
    SetState(State::Silent);
}

void Hearing::Fail(const std::string& why)
{
    Stop();
    trouble = why;
    forgetting.start();
    emit Changed();
}

void Hearing::SetState(State newState)
{
    if (std::exchange(state, newState) != newState)
        emit Changed();
}

void Hearing::Observe()
{
    if (std::exchange(openings, win.form.Openings) != win.form.Openings) {
        Stop();  // what plays is not the tune that is shown
        EndFollowing();
    }
    const MidiForm& form = win.frmBldMidi;
    const bool hasFile = form.Loaded && !form.controls.cmdCreateEnabled;
    if (!hasFile)
        formFile.reset();
    else if (!formFile)
        formFile.emplace(FormFile{win.tune, form.SoundNow()});
    if (std::exchange(formPlays, form.IsPlaying()) == form.IsPlaying())
        return;
    if (formPlays)
        FollowForm();
    else if (followed == &win.platform.player)
        EndFollowing();
}

/// Only one of both plays at a time.
void Hearing::FollowForm()
{
    Stop();
    if (!formFile)
        return;
    try {
        Tune tune = formFile->Performed;
        Follow(win.platform.player, PositionsOf(tune, formFile->With),
               win.frmBldMidi.controls.chkLoop, win.PlacesOf(tune));
        polling.start();
    } catch (const std::exception&) {
        // Not built from this tune: then there is nothing to be shown.
    }
}

void Hearing::StopForm()
{
    MidiForm& form = win.frmBldMidi;
    if (!form.IsPlaying())
        return;
    runner.RunUnobserved("Stop", [&] { form.cmdStop(); });
    if (form.OnChange)
        form.OnChange();
}

void Hearing::Follow(const Player& musicPlayer, PlayPositions positions, bool forEver,
                     std::vector<PlacedLine> lines)
{
    followed = &musicPlayer;
    follower.emplace(std::move(positions), forEver, std::move(lines));
    looked = {};
    leads = true;
}

/// The page goes back to what the form shows.
void Hearing::EndFollowing()
{
    follower.reset();
    followed = nullptr;
    area.ShowBand(std::nullopt);
    area.Lead(std::nullopt);
}

void Hearing::Poll()
{
    Observe();  // the form's music ends without an event
    if (state == State::Building && building.wait_for(0s) == std::future_status::ready)
        PlayBuilt(building.get());
    if (follower)
        ShowWhere();
    else if (state != State::Building)
        polling.stop();
}

void Hearing::ShowWhere()
{
    LookAtPages();
    const int tick = followed->TickHeard();
    if (leads) {
        const PageWindow now = area.InView();
        const PageWindow wanted = follower->WindowAt(tick, now, area.HeightInView());
        if (wanted != now)
            area.Lead(wanted);
    }
    area.ShowBand(follower->BandAt(tick));
}

/// Refresh draws them anew, and the user may change a measure before.
void Hearing::LookAtPages()
{
    std::array<unsigned, kPageCount> now;
    for (std::size_t i = 0; i < now.size(); ++i)
        now[i] = win.pages.picPage1[i].Surface.Picture().Revision();
    if (std::exchange(looked, now) != now)
        follower->Look(win.pages);
}

}  // namespace quillon
