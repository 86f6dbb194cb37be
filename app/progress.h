#pragma once

namespace sparkrig {

/// Shows how far long work has come, on one line of a terminal; quiet where the error stream is none.
class Progress {
  public:
    /// what: a verb in the -ing form. total: the number of steps.
    Progress(const char* what, int total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Begins the next step; name is what is worked on.
    void Next(const char* name);

  private:
    const char* what_;
    int total_;
    int step_ = 0;
    bool shown_;
};

}   // namespace sparkrig
