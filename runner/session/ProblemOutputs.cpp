#include "session/ProblemOutputs.h"

#include "formats/AnnotationText.h"
#include "formats/SarifText.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr const char* kGithub = "github";
constexpr const char* kGitlab = "gitlab";
constexpr const char* kGitlabFile = "gl-code-quality-report.json";

}  // namespace

void addProblemOptions(Command& command, ProblemOptions& options) {
    command.add(option({"--sarif"}, "FILE", "Write findings and failures as SARIF 2.1.0", &options.sarif));
    const TakeText choose = [&options](const std::string& where) { options.annotations = where; };
    command.add(option({"--annotate"}, "WHERE",
                       "Show findings and failures beside the source: github prints workflow commands; gitlab writes "
                       "gl-code-quality-report.json",
                       choose)
                    .allow({kGithub, kGitlab}));
}

void noteOutputs(const ProblemOptions& options, RunFiles& files) {
    files.write(options.sarif);
    if (options.annotations == kGitlab) files.write(std::string(kGitlabFile));
}

ProblemOutputs::ProblemOutputs(const ProblemOptions& options) : m_printsForGithub(options.annotations == kGithub) {
    if (options.sarif) m_sarif.emplace(*options.sarif);
    if (options.annotations == kGitlab) m_gitlab.emplace(kGitlabFile);
}

void ProblemOutputs::write(const ProblemReport& report) {
    if (m_printsForGithub) print(githubText(report));
    if (m_gitlab) m_gitlab->replace(gitlabText(report));
    if (m_sarif) m_sarif->replace(sarifText(report));
}

}  // namespace vexa::runner
