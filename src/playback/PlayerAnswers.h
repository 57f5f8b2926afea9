#pragma once

#include <chrono>

namespace ravelcue::ui {
struct WindowContext;
}

namespace ravelcue::playback {

// How long the window waits for a player to say where it stands: one frame period of its file,
// from 1 to 100 ms (40 ms when the file tells none).
std::chrono::milliseconds answerWait(double durationMs, int frameCount);

// Whether the player says where it stands within one frame period. One that does not is named
// in status panel 4 ("Player 2 busy") until it answers again; the window then leaves what shows
// its position as it was rather than wait for it.
bool playerAnswers(ui::WindowContext& context, int player);

// Panel 5 from the index player: "Position=2.04/12.34". Left as it was while that player is busy.
void showPositionText(ui::WindowContext& context);

} // namespace ravelcue::playback
