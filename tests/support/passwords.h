#pragma once

#include <string>

// "secret" as a bcrypt hash of cost 4: cheap to check, for the tests that
// sign in with basic authentication.
inline const std::string SecretHash = "$2b$04$KQfAhZcFLLhYMSJVzjJ1NegSWEEkEwXFZo6FUY/9zPm/mJJQGrAiK";
