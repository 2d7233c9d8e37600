// demo_register: puts the demo stations into the register of an application directory.

#include <exception>
#include <iostream>
#include <string>

#include "core/Database.h"
#include "demo/DemoRegister.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: demo_register DIRECTORY HH:MM\n"
                     "Adds one station of each kind to DIRECTORY/Kolmar.mdb, all with that contract hour.\n";
        return 2;
    }
    try {
        core::Database dbconn(std::string(argv[1]) + "/Kolmar.mdb");
        for (const auto& station : demo::OneOfEach(argv[2])) {
            demo::AddStation(dbconn, station);
        }
        // Ports of the simulated field, relative to the application directory.
        dbconn.Execute("update comports set device = 'field/' || portname");
    } catch (const std::exception& failure) {
        std::cerr << "demo_register: " << failure.what() << "\n";
        return 1;
    }
    return 0;
}
