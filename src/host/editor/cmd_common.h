// What the host's own commands share: the working drawing, messages,
// system variables, adding entities to the current space, selecting
// objects and changing them by a matrix.
#pragma once

#include <string>
#include <vector>

#include "host/dbmain.h"

class AcDbEntity;
class AcGeMatrix3d;

namespace zepk::editor::cmd {

AcDbDatabase* db();
void say(const std::string& utf8);
std::u16string upper(std::u16string s);
std::u16string sysString(const char16_t* name);
double sysReal(const char16_t* name, double fallback);
int sysInt(const char16_t* name, int fallback);
// A real as the host shows it in prompts ("1.0000").
std::string fmt(double v);

// Adds an entity to model space with the current layer, linetype and
// colour. Takes ownership; null id on failure.
AcDbObjectId addEntity(AcDbEntity* e);
// Adds an entity to model space as it is (its own properties). Takes
// ownership; null id on failure.
AcDbObjectId appendEntity(AcDbEntity* e);

// "Select objects:" until Enter. False when cancelled.
bool selectObjects(std::vector<AcDbObjectId>* out);

// Transforms each entity; returns how many refused the matrix.
int transformEntities(const std::vector<AcDbObjectId>& ids, const AcGeMatrix3d& m);
// Copies the entities into model space; the copies in the same order.
std::vector<AcDbObjectId> copyEntities(const std::vector<AcDbObjectId>& ids);
// Erases the entities.
void eraseEntities(const std::vector<AcDbObjectId>& ids);

// How many undo steps the last U or UNDO took back (what REDO puts back);
// 0 once anything else has been done.
int& undoneByLastCommand();

}  // namespace zepk::editor::cmd

namespace zepk::editor {
// Registration of the commands of each cmd_*.cpp file.
void registerModifyCommands();
void registerDrawCommands();
void registerViewCommands();
}  // namespace zepk::editor
