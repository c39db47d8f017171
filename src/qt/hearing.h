// Hearing the tune from the strip, and the band on the page that follows whatever plays: the
// strip's own music, or that of the MIDI form, which knows nothing of it.
//
// A part is built on a copy of the tune, in a thread of its own, and played without a file. While
// something plays or is being built, a timer asks where the music is. The form's state is only
// looked at, after each event.

#pragma once

#include "qt/page_area.h"
#include "qt/runner.h"
#include "shell/follower.h"
#include "shell/main_win.h"
#include "shell/part_to_play.h"

#include <QObject>
#include <QTimer>

#include <array>
#include <future>
#include <optional>
#include <string>

namespace quillon {

class Hearing : public QObject {
    Q_OBJECT

public:
    /// All must outlive it. The player is for it alone.
    Hearing(MainWin& mainWin, Runner& theRunner, PageArea& pageArea, Player& thePlayer);
    ~Hearing() override;

    /// From the measure in view to the end, or Stop.
    void PlayOrStop();

    void Play(const PartToPlay& part);
    void Stop();

    /// Looks at what an event has come to.
    void Observe();

    /// Whether it is playing or about to.
    bool IsOn() const { return state != State::Silent; }

    /// What has gone wrong of late, "" for nothing.
    const std::string& Trouble() const { return trouble; }

signals:
    /// IsOn or Trouble is not what it was.
    void Changed();

private:
    enum class State { Silent, Building, Playing };

    struct Built {
        PracticeTrack Track;
        std::string Trouble;  // instead of a track
    };

    /// The file that the MIDI form has.
    struct FormFile {
        Tune Performed;
        Sound With;
    };

    static Built Build(Tune tune, const Sound& sound, const PartToPlay& part);
    bool OpenPlayer();
    void ClosePlayer();
    void PlayBuilt(Built built);
    void Fail(const std::string& why);
    void FollowForm();
    void StopForm();
    void Follow(const Player& musicPlayer, PlayPositions positions, bool forEver,
                std::vector<PlacedLine> lines);
    void EndFollowing();
    void Poll();
    void ShowWhere();
    void LookAtPages();
    void SetState(State newState);

    MainWin& win;
    Runner& runner;
    PageArea& area;
    Player& player;
    State state = State::Silent;
    bool open = false;  // the player is
    QTimer polling;
    QTimer closing;     // the last notes may die away
    QTimer forgetting;  // of trouble
    std::string trouble;
    std::future<Built> building;
    std::vector<PlacedLine> buildingLines;  // of the tune that is being built
    int openings = 0;                       // of tunes, as last seen
    std::optional<FormFile> formFile;
    bool formPlays = false;

    std::optional<Follower> follower;
    const Player* followed = nullptr;
    std::array<unsigned, kPageCount> looked{};  // revisions of the pages that the follower knows
    bool leads = false;                         // the user has not taken the pages back
};

}  // namespace quillon
