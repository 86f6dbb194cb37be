#include "tools/scene/commands.h"

#include <cstdio>
#include <cstring>
#include <string_view>

#include "base/error.h"
#include "base/report_listener.h"
#include "platform/system/system.h"
#include "scene/binary_scene.h"
#include "scene/load_scene.h"
#include "tools/scene/dump.h"

namespace sparkrig {

namespace {

/// Prints what is reported about a file while it lives.
class FileReports {
  public:
    explicit FileReports(const std::string& file) : file_(file) { SetReportListener(Hear, this); }
    ~FileReports() { SetReportListener(nullptr, nullptr); }
    FileReports(const FileReports&) = delete;
    FileReports& operator=(const FileReports&) = delete;

    int Findings() const { return findings_; }

  private:
    static void Hear(const Report& report, void* context) { static_cast<FileReports*>(context)->Print(report); }

    void Print(const Report& report) {
        std::string_view text = report.message;
        const std::string prefix = file_ + ": ";
        while (text.starts_with(prefix)) text.remove_prefix(prefix.size());
        // Where the user keeps a file is no fault of it.
        for (const char* about_place : {"Absolute file path: '", "Network file accessed: '"})
            if (text == about_place + file_ + "'") return;
        const bool is_error = report.kind == ReportKind::Error;
        std::string line = prefix + (is_error ? "error: " : "warning: ") + std::string(text);
        if (report.place.line > 0 && file_ == report.file) line += " (line " + std::to_string(report.place.line) + ")";
        for (char& c : line)
            if (c == '\n' || c == '\r') c = ' ';   // a line stays one, whatever a file names its nodes
        std::fprintf(stderr, "%s\n", line.c_str());
        findings_ += is_error || text.find(" vertices duplicated in mesh '") == std::string_view::npos;
    }

    const std::string& file_;
    int findings_ = 0;
};

/// Loads the scene and hands it on. False when it cannot be loaded, which is said.
template <class Action>
bool WithScene(const std::string& file, Action action) try {
    const std::size_t last = file.find_last_of("/\\");
    KRN_3dScene scene;
    LoadScene(scene, file.c_str(), -1, MapFiles(last == std::string::npos ? "" : file.substr(0, last + 1)));
    action(scene);
    return true;
} catch (const ErrorRecord&) {   // it has been printed
    return false;
}

}   // namespace

bool PrintSceneInfo(const std::string& file) {
    const FileReports reports(file);
    return WithScene(file, [&](const KRN_3dScene& scene) {
        std::uint64_t vertices = 0, faces = 0;
        for (const KRN_Mesh& mesh : scene.meshes) {
            if (!mesh.Geometry()) continue;
            vertices += mesh.Geometry()->VertexCount();
            faces += mesh.Geometry()->FaceCount();
        }
        std::printf("%s: %s version %i, %i bytes\n", file.c_str(), scene.header.binary ? "binary" : "text",
                    scene.header.version, scene.file_size);
        std::printf("%i meshes (%ju vertices, %ju faces), %i helpers, %i cameras, %i lights\n", scene.meshes.Count(),
                    static_cast<std::uintmax_t>(vertices), static_cast<std::uintmax_t>(faces), scene.helpers.Count(),
                    scene.cameras.Count(), scene.lights.Count());
        std::printf("%g s at %g frames a second, from frame %g\n", static_cast<double>(scene.AnimationLength()),
                    static_cast<double>(scene.header.frame_speed), static_cast<double>(scene.header.first_frame));
    });
}

bool PrintSceneDump(const std::string& file, float time, bool geometry) {
    const FileReports reports(file);
    return WithScene(file, [&](KRN_3dScene& scene) {
        scene.SetSceneTime(static_cast<double>(time), true);
        const std::string json = DumpScene(scene, {file, time, geometry});
        std::fwrite(json.data(), 1, json.size(), stdout);
    });
}

bool ConvertScene(const std::string& in, const std::string& out) {
    const FileReports reports(in);
    return WithScene(in, [&](const KRN_3dScene& scene) {
        if (!scene.header.binary && RealPath(in.c_str()) == RealPath(out.c_str()))
            scene.Error("'%s' is the text that the scene comes from", out.c_str());
        SaveBinaryScene(scene, out.c_str());
    });
}

bool CheckScenes(const std::vector<std::string>& files) {
    bool well = true;
    for (const std::string& file : files) {
        const FileReports reports(file);
        well &= WithScene(file, [](const KRN_3dScene&) {});
        well &= reports.Findings() == 0;
    }
    return well;
}

}   // namespace sparkrig
