// What the menu's dialogs do. Each holds the frame loop until the user is done.
#pragma once
#include "app/engine.h"

namespace sparkrig {

/// The chosen effect becomes the current one.
void SelectEffect(Engine& engine, TesterState& state);
void SetDetailLevel(Engine& engine, TesterState& state);
void ShowInfo(const TesterState& state);

/// Asks for a picture, keeps its path as the user's setting and shows it.
void ChooseBackground(Engine& engine, TesterState& state);
/// The setting becomes empty.
void RemoveBackground(Engine& engine, TesterState& state);

}   // namespace sparkrig
