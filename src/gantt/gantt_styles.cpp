#include "core/engine_state.h"
#include "gantt/gantt.h"
#include "settings/settings.h"
#include "values/values.h"

namespace {

std::string NameOrDefault(const XlObject& templateShape, std::string_view usualName) {
    std::string name = templateShape.IsNothing() ? std::string() : templateShape.GetName();
    return name.empty() ? std::string(usualName) : name;
}

}  // namespace

void CreateGanttStyles() {
    FreeGanttStyles();
    Engine().ganttStyles = new GanttStyles();
}

void FreeGanttStyles() {
    delete Engine().ganttStyles;
    Engine().ganttStyles = nullptr;
}

void LoadGanttStyles() {
    GanttStyles& styles = EngineGanttStyles();
    const XlObject settingsSheet = EngineSettingsSheet();
    styles.completeBarTemplate = settingsSheet.ShapeByName(kCompleteBarTemplate);
    styles.progressBarTemplate = settingsSheet.ShapeByName(kProgressBarTemplate);
    styles.barTemplate = settingsSheet.ShapeByName(kBarTemplate);
    styles.connectorTemplate = settingsSheet.ShapeByName(kConnectorTemplate);
    styles.progressLineTemplate = settingsSheet.ShapeByName(kProgressLineTemplate);

    styles.barStyle = values::TextToInteger(settingsSheet.RangeOf(kBarStyleCell).GetValue());

    const SettingsRecord& settings = EngineSettings();
    const XlObject labelCell = EngineWbsSheet().Cell(settings.firstTaskRow, settings.taskNameColNo);
    styles.labelFontName = labelCell.GetWide("Font.Name");
    styles.labelFontSize = static_cast<float>(values::Val(labelCell.GetString("Font.Size")));
}

std::string BarTemplateName() {
    return NameOrDefault(EngineGanttStyles().barTemplate, kBarTemplate);
}

std::string ConnectorTemplateName() {
    return NameOrDefault(EngineGanttStyles().connectorTemplate, kConnectorTemplate);
}

std::string ProgressLineTemplateName() {
    return NameOrDefault(EngineGanttStyles().progressLineTemplate, kProgressLineTemplate);
}
