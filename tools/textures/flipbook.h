// A flipbook is a sprite whose painter also takes a moment: pictures that follow one another.
//
// On the disk it is a folder NAME with the pictures 00.png, 01.png and so on, and beside it the list NAME.ifl that
// names them in order.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "tools/textures/picture.h"

namespace sparkrig {

/// The phase is 0 in the first picture and goes up by 1 / pictures with each: what has the period 1 loops.
using MovingPainter = std::function<Pixel(Point, float phase)>;

struct Flipbook {
    const char* name;
    int size;   // pixels on a side
    int frames;
    MovingPainter paint;
};

std::vector<Flipbook> FlameFlipbooks();
std::vector<Flipbook> SmokeFlipbooks();

std::vector<Flipbook> AllFlipbooks();

/// Colour and alpha come in coarser steps than those of a sprite, which halves the file: on what moves nobody sees it.
Picture RenderFrame(const Flipbook& flipbook, int frame);

/// The picture's file, seen from the list's folder: "NAME\00.png".
std::string FrameFile(const Flipbook& flipbook, int frame);

/// The text of the list: a line for each picture.
std::string FrameList(const Flipbook& flipbook);

}   // namespace sparkrig
