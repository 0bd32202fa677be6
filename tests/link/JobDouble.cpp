// Stands in for the jobs, which belong to the folder above.

#include "link/BootLoader.h"
#include "tests/link/LinkTest.h"

int freedJobs = 0;

class COperation {};

void giveJob(CBootLoader &bootLoader) {
    bootLoader.m_ObOperation = new COperation;
}

void CBootLoader::FreeOperation() {
    if (m_ObOperation != nullptr)
        ++freedJobs;
    delete m_ObOperation;
    m_ObOperation = nullptr;
}

void CBootLoader::Destroy(CBootLoader *control) {
    delete control;
}
