#pragma once

// The application's build defines NUVROOT_API.
