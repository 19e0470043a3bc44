int absentFunction()
{
    return 1;
}
