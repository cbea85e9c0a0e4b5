// Quorvex.Password, the object that keeps passwords as salted slow hashes (password_object.cpp
// tells its members). Pages make it through Server.CreateObject; generation uses it to write
// the project's fixed password as a hash rather than as itself.
#pragma once

#include "automation/object.h"

namespace qv {

// False when libsodium cannot start (no random source): then there is no such object.
bool PasswordHashesAvailable();
Ref<Object> NewPasswordObject();

}  // namespace qv
