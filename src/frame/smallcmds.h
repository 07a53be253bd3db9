// The small commands whose whole behaviour is one line of the command
// table: a layer maker, a circle by two means, the authors' timing and
// sorting tests, and the command that removes the application's registry
// record.
#pragma once

namespace zepk::frame {

void cmdNewLayer();
void cmdChangeLineColour();
void cmdSortTest();
void cmdPrb();
void cmdPrb1();
void cmdNewDwg();
void cmdFileTest();
void cmdAddCircle();
void cmdUnRegZepk();
void invokeLspCommand();

}  // namespace zepk::frame
