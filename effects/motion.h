// Motion: the channels of a sub-effect as pure functions of time, count value and random numbers.
//
//   t  seconds since the instance's birth
//   c  its count value, normally in [0, 1]
//   r  its four random numbers, each in [0, 1], drawn once at its start
//
// Equal arguments give equal bits; nothing is allocated, nothing fails, every argument has a defined result. What is
// here for one instance, motion_lanes.h does for many at once, with the same bits. Position, rotation and scale include
// those of the transform object.
#pragma once
#include "effects/effect_definition.h"

namespace sparkrig {

using MotionRandoms = float[4];

/// The vector that one stage gives, in the unit of its channel. An unknown type gives (0, 0, 0).
/// "randSphere" is uniform on the sphere (Archimedes: uniform height, uniform longitude).
D3DXVECTOR3 EvaluateMotion(const VisualEffectMotion& stage, double t, float c, const MotionRandoms& r);

D3DXVECTOR3 EvalPosition(const SubEffect& sub, double t, float c, const MotionRandoms& r);
/// The stages' rotations one after the other (each a vector along its axis, as long as its angle in radians), then the
/// start rotation, then that of the transform object.
D3DXQUATERNION EvalRotation(const SubEffect& sub, double t, float c, const MotionRandoms& r);
/// The rotation of flat particles that face the camera, in radians.
float EvalRotationAngle(const SubEffect& sub, double t, float c, const MotionRandoms& r);
D3DXVECTOR3 EvalScale(const SubEffect& sub, double t, float c, const MotionRandoms& r);
/// Red, green, blue; 1 is full.
D3DXVECTOR3 EvalColor(const SubEffect& sub, double t, float c, const MotionRandoms& r);
float EvalAlpha(const SubEffect& sub, double t, float c, const MotionRandoms& r);

/// Seconds between an instance's start and its birth.
double BirthDelay(const SubEffect& sub, float c);
/// Seconds between its birth and its end; 0 for ever.
float LifeForCount(const SubEffect& sub, float c);
/// In [0, 1].
float FadeFactor(const SubEffect& sub, double t, float c);

}   // namespace sparkrig
