#pragma once
namespace sparkrig {
template <class T, int N, int copy>
class DynaMem {};
}   // namespace sparkrig
