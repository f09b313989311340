// SPDX-License-Identifier: Apache-2.0
#pragma once

// Texts in the person's language, for an application object that the module makes itself. In a host's, the
// host or its plug-in has the window's texts translated, and the host chooses the language of the toolkit.

namespace torka::jobproperties {

// Lets tr() give the texts of the bundle beside this library, and loads Qt's own catalogue. Both may be
// missing: the window is English then. REQUIRES: an application object, which owns what this loads.
void loadOwnTexts();

} // namespace torka::jobproperties
