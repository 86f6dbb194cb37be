// From SDL's events to numbered messages.
#pragma once
#include <SDL2/SDL_events.h>

namespace sparkrig {

/// Queues the messages that an event of the system stands for; most events stand for none.
void QueueEvent(const SDL_Event& event);

}   // namespace sparkrig
