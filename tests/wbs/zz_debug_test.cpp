#include <gtest/gtest.h>
#include <iostream>
#include "engine/exports.h"
#include "support/project_json.h"
TEST(ZzDebug, Log) {
    testsupport::ProjectJson project;
    project.AddStatusTemplates();
    project.Task(12, 1, "Plan");
    project.Task(13, 2, "Late", {{"C", "AL"}, {"P", 0.375}, {"D", 0.7}, {"F", 400}, {"H", "Plan"}});
    project.Bind();
    std::vector<std::string> log;
    sheethost::SetMemberLog(&log);
    kpUpdateWBS();
    sheethost::SetMemberLog(nullptr);
    for (auto& l : log) if (l.find("Shape") != std::string::npos || l.find("->") != std::string::npos) std::cout << l << "\n";
}
